// Text decoding of raw bytes, the code-point helpers over them and the line
// reader of text files. Checks that decoding always gives valid UTF-8, moves
// UTF-8 through unchanged, agrees with the detected encoding and survives
// UTF-16; that code points count alike in every helper; that case folding
// agrees with the case-insensitive compare and hash; and that lines written
// by TextFile read back as they were.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string_view>

#include "fuzz_support.h"
#include "melodex/foundation/status.h"
#include "melodex/foundation/text_encoding.h"
#include "melodex/foundation/text_file.h"
#include "support/temp_folder.h"

using namespace melodex;

namespace {

const test::TempFolder& scratch() {
    static const test::TempFolder folder;
    return folder;
}

void checkCodePoints(std::string_view bytes) {
    std::size_t count = 0;
    String rebuilt;
    for (std::size_t pos = 0; pos < bytes.size(); ++count) {
        const std::size_t before = pos;
        const char32_t c = decodeUtf8(bytes, pos);
        FUZZ_CHECK(pos > before && pos <= bytes.size(), fuzz::printable(bytes));
        appendUtf8(rebuilt, c);
    }
    FUZZ_CHECK(count == codePointLength(bytes), fuzz::printable(bytes));
    FUZZ_CHECK(codePointToByteOffset(bytes, count) == bytes.size(), fuzz::printable(bytes));
    FUZZ_CHECK(byteToCodePointOffset(bytes, bytes.size()) == count, fuzz::printable(bytes));
    FUZZ_CHECK(isValidUtf8(rebuilt), fuzz::printable(bytes));
    if (isValidUtf8(bytes)) FUZZ_CHECK(rebuilt == bytes, fuzz::printable(bytes));
}

void checkCase(const String& text) {
    const String folded = foldCase(text);
    FUZZ_CHECK(isValidUtf8(folded), fuzz::printable(text));
    FUZZ_CHECK(equalsIgnoreCase(text, folded), fuzz::printable(text));
    FUZZ_CHECK(compareIgnoreCase(text, folded) == 0, fuzz::printable(text));
    FUZZ_CHECK(CaseInsensitiveHash{}(text) == CaseInsensitiveHash{}(folded), fuzz::printable(text));
    FUZZ_CHECK(foldCase(folded) == folded, fuzz::printable(text));
}

void checkTextFile(std::string_view bytes, const String& text) {
    const String path = scratch().write("input.txt", bytes);
    TextFile input;
    FUZZ_CHECK(input.open(path, TextFile::Mode::Read) == StatusSuccess, path);
    FUZZ_CHECK(input.text() == text, fuzz::printable(bytes));
    StringArray lines;
    for (String line; input.readLine(line);) {
        FUZZ_CHECK(line.find_first_of("\r\n") == String::npos, fuzz::printable(bytes));
        lines.push_back(line);
    }

    for (const auto encoding : {TextFile::Encoding::Default, TextFile::Encoding::Unicode}) {
        // A new file each time: replacing one would wait for the disk.
        const String copyPath = scratch().file("copy.txt");
        std::filesystem::remove(copyPath);
        TextFile output;
        FUZZ_CHECK(output.open(copyPath, TextFile::Mode::Write, encoding) == StatusSuccess,
                   copyPath);
        for (const String& line : lines)
            output.writeLine(line);
        FUZZ_CHECK(output.close() == StatusSuccess, copyPath);
        TextFile copy;
        FUZZ_CHECK(copy.open(copyPath, TextFile::Mode::Read) == StatusSuccess, copyPath);
        StringArray back;
        for (String line; copy.readLine(line);)
            back.push_back(line);
        FUZZ_CHECK(back == lines, fuzz::printable(bytes));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);

    TextEncoding found = TextEncoding::Utf8;
    const String text = decodeText(bytes, &found);
    FUZZ_CHECK(found == detectEncoding(bytes), fuzz::printable(bytes));
    FUZZ_CHECK(isValidUtf8(text), fuzz::printable(bytes));
    FUZZ_CHECK(decodeText(String(bytes)) == text, fuzz::printable(bytes));
    if (found == TextEncoding::Utf8) FUZZ_CHECK(text == bytes, fuzz::printable(bytes));
    if (found == TextEncoding::Utf8Bom && isValidUtf8(bytes.substr(3)))
        FUZZ_CHECK(text == bytes.substr(3), fuzz::printable(bytes));
    FUZZ_CHECK(decodeText(encodeUtf16LE(text, true)) == text, fuzz::printable(bytes));

    checkCodePoints(bytes);
    checkCase(text);
    checkTextFile(bytes, text);
    return 0;
}
