#include "melodex/song/song.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <random>
#include <set>
#include <tuple>

#include <gtest/gtest.h>

#include "melodex/foundation/text_encoding.h"
#include "melodex/foundation/xml.h"
#include "support/song_builders.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using namespace test;

const LocalTime Stamp(2024, 1, 31, 17, 45, 2);

// A song with a fixed id and time, information of every kind and sections
// that carry what a layout writes: a verse with every section and line
// setting and with chords at the start, between words, at the end, on an
// empty line and with only blanks between two of them; a plain chorus; a
// bridge whose settings each have a condition; an empty tag. The files
// song/praise.* hold what each layout writes for it.
Song sampleSong() {
    Song song;
    song.uuid("0f8b2d5e-3c1a-4e6f-9a7b-2d4c6e8f0a1b");
    song.updated(Stamp);
    SongInfo& info = song.info();
    info.setTitle("Praise & Thanks");
    info.setAuthor("Frère Anon.");
    info.setKey("G");
    info.addIndex("Praise him <all>");
    info.addCategory("Thanksgiving");
    SongReference reference("bible", "Psalm 150");
    reference.setAttribute("version", "KJV");
    info.addReference(reference);

    auto* verse = new SongSection(SectionType::Verse);
    SongLine* first = lineOf("Praise Him", {{"G", 0}, {"D", 7}, {"Em", 10}});
    verse->addLine(first);
    first->singers(SingerType::Leader);
    first->indent(1);
    first->repeat(2);
    first->setAttribute("Singers", "ignored: the field is written instead");
    first->setAttribute("chordsize", Value(12));
    first->setAttribute("note", "say \"loud\" & C:\\x");
    first->setAttribute("REPEAT", "ignored too");
    verse->addLine(lineOf("", {{"C", 0}}));
    verse->addLine(lineOf("all creatures here below"));
    verse->addLine(lineOf("Oh  Lord", {{"G", 2}, {"D", 3}}));
    verse->setSingers(SingerType::Men);
    verse->repeat(2);
    verse->indent(1);
    verse->target(Target::Band);
    verse->spaceBefore(1);
    song.addSection(verse);
    auto* chorus = new SongSection(SectionType::Chorus);
    chorus->addLine(lineOf("Alleluia", {{"C", 2}}));
    song.addSection(chorus);
    auto* bridge = new SongSection(SectionType::Bridge);
    bridge->addLine(lineOf("Amen"));
    bridge->setSingers(SingerType::Women);  // written as the repeat count
    bridge->target(Target::Everyone);
    bridge->spaceBefore(5);
    bridge->keepWithPrevious(true);
    song.addSection(bridge);
    song.addSection(new SongSection(SectionType::Tag));
    song.generateSectionIDs();
    return song;
}

TEST(SongXmlWriterTest, WritesEachLayoutExactly) {
    Song song = sampleSong();
    const String native = goldenText("song/praise.song");
    EXPECT_EQ(song.saveToText(SongFileType::Song, true), native);
    EXPECT_EQ(song.saveToText(SongFileType::Song, false), native.substr(native.find("<song")));
    EXPECT_EQ(song.saveToText(SongFileType::Text, true), goldenText("song/praise.txt"));
    EXPECT_EQ(song.saveToText(SongFileType::Sng, true), goldenText("song/praise.sng.txt"));
    // Types not meant for writing give a bare skeleton.
    EXPECT_EQ(song.saveToText(SongFileType::OpenSong, true), goldenText("song/praise.other.txt"));
    EXPECT_EQ(song.saveToText(99, true), goldenText("song/praise.other.txt"));

    // Saving gives a song without an id a new one, and keeps it afterwards.
    Song fresh;
    const String first = fresh.saveToText(SongFileType::Text, false);
    EXPECT_EQ("<uuid>" + fresh.uuid() + "</uuid>", first.substr(0, 6 + 36 + 7));
    EXPECT_EQ(fresh.saveToText(SongFileType::Text, false), first);
}

TEST(SongXmlWriterTest, EscapesOddTextsAndPutsChordsPastTheEndAfterIt) {
    SongSection odd(42);
    odd.id("say \"x\"\\");
    EXPECT_EQ(odd.writeToText(SongFileType::Song),
              "\n<block type=\"Verse\" id=\"say &quot;x&quot;\\\">\n</block>\n");
    // Chord texts are escaped and offsets count characters, not bytes.
    std::unique_ptr<SongLine> accented(lineOf("Jésus", {{"C&", 3}}));
    EXPECT_EQ(accented->writeToText(SongFileType::Song),
              "<line>Jés<chord>C&amp;</chord>us</line>\n");
    // A chord past the end follows the last character, in order.
    std::unique_ptr<SongLine> past(lineOf("Amen", {{"F", 9}, {"C", 4}}));
    EXPECT_EQ(past->writeToText(SongFileType::Song),
              "<line>Amen<chord>C</chord><chord>F</chord></line>\n");
    EXPECT_EQ(past->writeToText(SongFileType::Sng), "Amen\n");

    // Lyrics are element text: "&" and "<" must not make the file unreadable
    // as XML, and quotes keep their bytes.
    Song song;
    song.addSection(new SongSection(1));
    song.getSection(0)->addLine(lineOf("Praise & \"glory\" <to God>", {{"G", 9}}));
    for (int type : {SongFileType::Song, SongFileType::Sng}) {
        Song back;
        ASSERT_EQ(back.loadFromText(song.saveToText(type, true)), 0u);
        EXPECT_EQ(back.loadedFileType(), type);
        EXPECT_EQ(back.getSection(0)->getLine(0)->text(), "Praise & \"glory\" <to God>");
    }
}

// Section singers are written as the repeat count and read as a word, the
// indent is written as "ident", and "All" reads as target 0: all else comes
// back, awkward attribute values too.
TEST(SongXmlFileTest, NativeFileRoundTripLosesOnlySectionSingersIndentAndAll) {
    TempFolder folder;
    Song song = sampleSong();
    const String path = folder.write("praise.song", "an older file is replaced");
    ASSERT_EQ(song.saveToFile(path, SongFileType::Song), StatusSuccess);
    EXPECT_EQ(folder.read("praise.song"), goldenText("song/praise.song"));
    EXPECT_EQ(song.saveToFile(folder.file("no/such/folder.song"), SongFileType::Song),
              Status(ENOENT));

    Song back;
    back.setLocalSequence("C1");
    ASSERT_EQ(back.loadFromFile(path), StatusSuccess);
    EXPECT_EQ(back.filename(), path);
    EXPECT_EQ(back.localSequence(), "C1");
    EXPECT_EQ(back.getSection(0)->getLine(0)->attributes().size(), 2u);  // chordsize and note
    String expected = goldenText("song/praise.song");
    for (const char* lost : {" singers=\"2\"", " singers=\"1\"", " ident=\"1\"", " target=\"All\""})
        expected = replaceAll(expected, lost, "");
    EXPECT_EQ(back.saveToText(SongFileType::Song, true), expected);
}

// A ".sng" file is UTF-16 with CR LF, a text file has CR LF; what each reads
// back as (song/praise.*.expected) shows what its layout cannot hold.
TEST(SongXmlFileTest, SngAndTextFilesUseCrLfAndLoseWhatTheirLayoutsCannotHold) {
    TempFolder folder;
    Song song = sampleSong();
    const String sng = replaceAll(goldenText("song/praise.sng.txt"), "\n", "\r\n");
    const std::tuple<int, const char*, String> files[] = {
        {SongFileType::Sng, "praise.sng", encodeUtf16LE(sng, true)},
        {SongFileType::Text, "praise.txt", replaceAll(goldenText("song/praise.txt"), "\n", "\r\n")},
    };
    for (const auto& [type, name, bytes] : files) {
        ASSERT_EQ(song.saveToFile(folder.file(name), type), StatusSuccess);
        EXPECT_EQ(folder.read(name), bytes);
        Song back;
        ASSERT_EQ(back.loadFromFile(folder.file(name)), StatusSuccess);
        EXPECT_EQ(describe(back), goldenText(String("song/") + name + ".expected"));
    }
}

// Every file under song/read reads as the ".expected" file named by its first
// name part says, from the file and from memory alike. One song reads them all
// from memory, so nothing of an earlier file may linger.
TEST(SongXmlReaderTest, EveryFileReadsAsItsGoldenFileSays) {
    const std::set<std::filesystem::path> paths(
        std::filesystem::directory_iterator(testDataPath("song/read")), {});
    TempFolder folder;
    Song reused;
    int files = 0;
    for (const std::filesystem::path& path : paths) {
        const String name = path.filename().string();
        if (path.extension() == ".expected" || path.extension() == ".md") continue;
        SCOPED_TRACE(name);
        ++files;
        const String expected =
            goldenText("song/read/" + name.substr(0, name.find('.')) + ".expected");
        Song song;
        ASSERT_EQ(song.loadFromFile(path.string()), StatusSuccess);
        EXPECT_EQ(describe(song), expected);
        ASSERT_EQ(reused.loadFromText(folder.read(path.string())), StatusSuccess);
        EXPECT_EQ(describe(reused), expected);
    }
    EXPECT_GE(files, 26);
}

TEST(SongXmlReaderTest, SongSmartDatesMayBeIsoDates) {
    // Without an expectation: not a date, so the song keeps the time it was made at.
    const std::pair<const char*, const char*> dates[] = {
        {"20230514102200", "20230514102200"},
        {"2023-05-14", "20230514000000"},
        {"2023-05-14T10:22:07.5+02:00", "20230514102207"},
        {" 2023-05-14 10:22 ", "20230514102200"},
        {"2023-02-30", ""},
        {"yesterday", ""},
        {"2023-5-14", ""}};
    for (const auto& [date, expected] : dates) {
        Song song;
        ASSERT_EQ(song.loadFromText(String("<song><songdata/><modifieddate>") + date +
                                    "</modifieddate></song>"),
                  StatusSuccess);
        if (*expected) {
            EXPECT_EQ(song.updated().format(), expected) << date;
        } else {
            EXPECT_NE(song.updated().year(), 2023) << date;
        }
    }
}

TEST(SongXmlReaderTest, BadInputGivesAStatusOrPlainTextNeverACrash) {
    TempFolder folder;
    Song song;
    EXPECT_EQ(song.loadFromFile(folder.file("missing.song")), Status(ENOENT));
    EXPECT_EQ(song.filename(), folder.file("missing.song"));
    EXPECT_EQ(song.loadFromFile(folder.path()), Status(EISDIR));
    // A plain-text song starts like XML but is not one document.
    EXPECT_EQ(song.loadFromXmlString(goldenText("song/read/text_with_id.txt")), StatusXmlMalformed);
    EXPECT_EQ(song.loadFromXmlNode(XmlNode()), StatusFailed);

    // Every cut of a saved song loads, as XML or as plain text.
    const String whole = sampleSong().saveToText(SongFileType::Song, true);
    for (std::size_t length = 0; length < whole.size(); ++length)
        ASSERT_EQ(song.loadFromText(whole.substr(0, length)), StatusSuccess) << length;

    std::mt19937 random(20240131);
    String garbage(64 * 1024, '\0');
    std::generate(garbage.begin(), garbage.end(), [&] { return char(random()); });
    ASSERT_EQ(song.loadFromFile(folder.write("garbage.song", garbage)), StatusSuccess);
    EXPECT_EQ(song.loadedFileType(), SongFileType::Text);

    const String longLine(10 * 1024 * 1024, 'a');
    ASSERT_EQ(song.loadFromFile(folder.write("long.txt", longLine)), StatusSuccess);
    EXPECT_EQ(song.getSection(0)->getLine(0)->text().size(), longLine.size());
    ASSERT_EQ(song.loadFromText("<song><block><line>" + longLine + "<chord>G</chord></line>" +
                                "</block></song>"),
              StatusSuccess);
    SongChord chord;
    EXPECT_TRUE(song.getSection(0)->getLine(0)->getChordAtOffset(int(longLine.size()), chord));

    String nested, closing;  // deeper than any recursive reader could go
    for (int i = 0; i < 100000; ++i)
        nested += "<a>", closing += "</a>";
    nested += closing;
    ASSERT_EQ(
        song.loadFromText("<song><block><line>x" + nested + "</line></block>" + nested + "</song>"),
        StatusSuccess);
    EXPECT_EQ(outline(song), "V1: x");
    ASSERT_EQ(song.loadFromText("<set>" + nested + "</set>"), StatusSuccess);
    EXPECT_EQ(song.getSectionCount(), 0);
}

// Inputs the fuzzers found (tests/fuzz), each complete: what is read must
// survive being saved as a ".song" file and read again. A character that XML
// cannot carry is saved as U+FFFD; everything else comes back as it was.
TEST(SongXmlFileTest, WhatIsReadSurvivesSavingAndReadingAgain) {
    using namespace std::string_literals;
    struct Case {
        std::string input;
        std::string (*seen)(const Song&);  // what must come back
        std::string expected;
    };
    const auto firstLine = [](const Song& song) { return song.getSection(0)->getLine(0)->text(); };
    const auto uuidAndLyric = [](const Song& song) {
        return song.uuid() + "|" + song.getSection(0)->getLine(0)->text();
    };
    const auto author = [](const Song& song) { return song.info().author(); };
    const auto infoLists = [](const Song& song) {
        String out;
        for (const auto& attribute : song.info().attributes())
            out += attribute.name + "=" + attribute.value + ";";
        for (int i = 0; i < song.info().getCategoryCount(); ++i)
            out += "category " + song.info().getCategory(i) + ";";
        for (int i = 0; i < song.info().getIndexCount(); ++i)
            out += "index " + song.info().getIndex(i) + ";";
        return out;
    };
    const auto references = [](const Song& song) {
        const SongReference reference = song.info().getReference(0);
        return reference.type() + "|" + reference.getAttribute("n") + "|" + reference.value();
    };
    const auto uuid = [](const Song& song) { return song.uuid(); };
    const Case cases[] = {
        // A NUL byte read as a plain-text lyric was written raw into <line>.
        {"\0"s, firstLine, "\uFFFD"},
        {"a\x01\x1F\xEF\xBF\xBF b"s, firstLine, "a\uFFFD\uFFFD\uFFFD b"},
        // A reference outside Unicode was read as bytes that are not UTF-8;
        // the saved file then read as Windows-1252, changing every letter.
        {"<song><SongsID>&#x110000;</SongsID><songdata>J\u00e9sus</songdata></song>", uuidAndLyric,
         "\uFFFD|J\u00e9sus"},
        {"<song><uuid>&#xD800;x&#0;</uuid><block><line>\u00e9</line></block></song>", uuidAndLyric,
         "\uFFFDx\uFFFD|\u00e9"},
        // A CR came back as LF.
        {"<song><author>&#13;</author><lyrics></lyrics></song>", author, "\r"},
        // A uuid read from a file was written unescaped.
        {"<song><uuid>a&lt;b&amp;</uuid></song>", uuid, "a<b&"},
        // Reference attributes were written without escapes.
        {"<song><info><reference type=\"a&quot;b\" n=\"&lt;&#9;&#10;\">x</reference></info></song>",
         references, "a\"b|<\t\n|x"},
        // OpenSong and SongSmart "theme" and "category" are categories as
        // soon as they are read, not attributes that turn into categories
        // once the song is saved.
        {"<song><lyrics>x</lyrics><title>T</title><theme>Grace</theme><category>Joy</category>"
         "<index>i</index></song>",
         infoLists, "title=T;category Grace;category Joy;index i;"},
        {"<song><songdata>x</songdata><theme>Grace</theme></song>", infoLists, "category Grace;"},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.input);
        Song song;
        ASSERT_EQ(song.loadFromText(test.input), StatusSuccess);
        const String saved = song.saveToText(SongFileType::Song, true);
        EXPECT_TRUE(isValidUtf8(saved));
        Song back;
        ASSERT_EQ(back.loadFromText(saved), StatusSuccess);
        EXPECT_EQ(back.loadedFileType(), SongFileType::Song);
        EXPECT_EQ(test.seen(back), test.expected);
        EXPECT_EQ(back.saveToText(SongFileType::Song, true), saved);
    }
}

}  // namespace
}  // namespace melodex
