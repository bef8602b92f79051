// INI files (the library index, settings, string tables). Two inputs in one:
// - the bytes as a file: read as IniFile::load reads them, written, read
//   again: the same sections and values, in the same order;
// - the decoded bytes, split at U+0001 into (section, name, value) triples,
//   as a program would set them: any names and values, line breaks, quotes,
//   brackets and byte-order marks among them, must come back unchanged.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz_support.h"
#include "melodex/foundation/ini_file.h"
#include "melodex/foundation/text_encoding.h"

using namespace melodex;

namespace {

String describe(const IniFile& ini) {
    String out;
    for (int k = 0; k < ini.getKeyCount(); ++k) {
        const ConfigKey& key = *ini.getKey(k);
        out += "[" + fuzz::printable(key.name()) + "]\n";
        for (int v = 0; v < key.getValueCount(); ++v) {
            const ConfigValue& value = key.getValue(v);
            out += fuzz::printable(value.name()) + " = " + fuzz::printable(value.value()) + "\n";
        }
    }
    return out;
}

void checkRoundTrip(const IniFile& ini, std::string_view input) {
    const String written = ini.toString();
    FUZZ_CHECK(isValidUtf8(written), fuzz::printable(written));
    IniFile back;
    back.loadFromString(decodeText(written));  // as load() reads a file
    const String want = describe(ini);
    const String got = describe(back);
    FUZZ_CHECK(want == got, "input " + fuzz::printable(input) + "\nwritten " +
                                fuzz::printable(written) + "\nwant:\n" + want + "got:\n" + got);
    FUZZ_CHECK(back.toString() == written, fuzz::printable(written));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const String text = decodeText(bytes);

    IniFile read;
    read.loadFromString(text);
    checkRoundTrip(read, bytes);

    IniFile built;
    const StringArray pieces = split(text, "\x01");
    for (std::size_t i = 0; i < pieces.size(); i += 3) {
        ConfigKey* key = built.createKey(pieces[i]);
        if (i + 1 < pieces.size())
            key->setString(pieces[i + 1], i + 2 < pieces.size() ? pieces[i + 2] : "");
    }
    checkRoundTrip(built, bytes);
    return 0;
}
