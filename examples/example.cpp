// A small tour of the library: reads an INI file and a text file in any of
// the encodings found in the wild, and prints what it found.
//
//     melodex_example hymn.ini lines-utf16.txt

#include <cstdio>

#include "melodex/melodex.h"

using namespace melodex;

namespace {

const char* encodingName(TextEncoding encoding) {
    switch (encoding) {
        case TextEncoding::Utf8:
            return "UTF-8";
        case TextEncoding::Utf8Bom:
            return "UTF-8 with byte-order mark";
        case TextEncoding::Utf16LE:
            return "UTF-16 little-endian";
        case TextEncoding::Utf16BE:
            return "UTF-16 big-endian";
        case TextEncoding::Windows1252:
            return "Windows-1252";
    }
    return "unknown";
}

int showIni(const String& path) {
    IniFile ini;
    if (Status status = ini.load(path); status != StatusSuccess) {
        std::fprintf(stderr, "%s: %s\n", path.c_str(), statusMessage(status).c_str());
        return 1;
    }
    std::printf("%s: %d sections\n", path.c_str(), ini.getKeyCount());
    for (int i = 0; i < ini.getKeyCount(); ++i) {
        const ConfigKey* key = ini.getKey(i);
        std::printf("  [%s]\n", key->name().c_str());
        for (int v = 0; v < key->getValueCount(); ++v) {
            std::printf("    %s = %s\n", key->getValue(v).name().c_str(),
                        key->getValue(v).value().c_str());
        }
    }
    return 0;
}

int showText(const String& path) {
    TextFile file;
    if (Status status = file.open(path, TextFile::Mode::Read); status != StatusSuccess) {
        std::fprintf(stderr, "%s: %s\n", path.c_str(), statusMessage(status).c_str());
        return 1;
    }
    std::printf("%s: %s\n", path.c_str(), encodingName(file.detectedEncoding()));
    String line;
    for (int number = 1; file.readLine(line); ++number) {
        std::printf("  %2d  %-40s (%zu characters)\n", number, line.c_str(), codePointLength(line));
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s FILE.ini TEXT-FILE\n", argv[0]);
        return 2;
    }
    const int iniResult = showIni(argv[1]);
    const int textResult = showText(argv[2]);
    return iniResult != 0 || textResult != 0 ? 1 : 0;
}
