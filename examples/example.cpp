// A small tour of the library: reads an INI file and a text file in any of
// the encodings found in the wild and prints what it found, then builds a
// song in memory, with chords over its words, and prints it transposed.
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
        // Pad by characters, not bytes, so accented and Cyrillic lines align.
        const std::size_t length = codePointLength(line);
        const String padding(length < 40 ? 40 - length : 0, ' ');
        std::printf("  %2d  %s%s (%zu characters)\n", number, line.c_str(), padding.c_str(),
                    length);
    }
    return 0;
}

// A line of lyrics with chords at the characters they stand over:
// {{0, "D"}, {8, "G"}} puts D over the first letter and G over the ninth.
SongLine* lyricLine(const String& text, std::initializer_list<std::pair<int, const char*>> chords) {
    auto* line = new SongLine();
    line->setText(text);
    for (const auto& [offset, symbol] : chords)
        line->addChord(SongChord(symbol, offset));
    return line;
}

void showSong() {
    Song song;
    song.info().setTitle("Jésus, ta grâce");
    song.info().setAuthor("Example");
    song.info().setKey("D");

    auto* verse = new SongSection(1);
    verse->addLine(lyricLine("Jésus, ta grâce est là", {{0, "D"}, {7, "G"}, {17, "A"}}));
    verse->addLine(lyricLine("Amazing grace, how sweet the sound",
                             {{0, "D"}, {8, "D7"}, {19, "G/B"}, {29, "D"}}));
    song.addSection(verse);
    auto* chorus = new SongSection(2);
    chorus->addLine(lyricLine("Святый Боже, святый крепкий", {{0, "Bm"}, {13, "Em7"}, {21, "A"}}));
    song.addSection(chorus);
    song.generateSectionIDs();

    std::printf("\n%s\n\n", song.toString().c_str());
    std::printf("%s\n", chordSheet(song).c_str());
    song.transpose(3);
    std::printf("Transposed up three semitones (%s):\n\n%s", song.info().keyName(0).c_str(),
                chordSheet(song).c_str());
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s FILE.ini TEXT-FILE\n", argv[0]);
        return 2;
    }
    const int iniResult = showIni(argv[1]);
    const int textResult = showText(argv[2]);
    showSong();
    return iniResult != 0 || textResult != 0 ? 1 : 0;
}
