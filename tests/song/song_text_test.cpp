#include "melodex/song/song.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "melodex/foundation/text_encoding.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using test::TempFolder;

// Each section as its id and its lines joined by "/": "V1: a/b".
String outline(const Song& song) {
    String out;
    for (int i = 0; i < song.getSectionCount(); ++i) {
        const SongSection& section = *song.getSection(i);
        if (!out.empty()) out += " | ";
        out += section.id() + ":";
        for (int j = 0; j < section.getLineCount(); ++j)
            out += (j == 0 ? " " : "/") + section.getLine(j)->text();
    }
    return out;
}

TEST(SongTextTest, ParagraphsBecomeSectionsTypedByTheirLeadingTabs) {
    Song song;
    ASSERT_EQ(song.loadFromTextString("Amazing grace\n  how sweet\t \n"
                                      "\n"
                                      "\tChorus line\n\t\tstill chorus\n"
                                      " \t \n"
                                      "\t\tBridge\n"
                                      "\t\n"
                                      "\t\t\tAlso a bridge\n"
                                      "\n\n\n"
                                      " \tA verse: blanks before the tab\n"
                                      "G   C   D\n"),
              StatusSuccess);
    EXPECT_EQ(song.loadedFileType(), SongFileType::Text);
    EXPECT_EQ(outline(song),
              "V1: Amazing grace/how sweet | C1: Chorus line/still chorus | B1: Bridge"
              " | B2: Also a bridge | V2: A verse: blanks before the tab/G   C   D");
    EXPECT_FALSE(song.getSection(4)->getLine(1)->hasChords());
}

TEST(SongTextTest, LineBreaksMayBeLfCrLfOrCr) {
    for (const char* text : {"a\nb\n\nc\n", "a\r\nb\r\n\r\nc\r\n", "a\rb\r\rc\r", "a\r\nb\n\rc"}) {
        Song song;
        ASSERT_EQ(song.loadFromTextString(text), StatusSuccess);
        EXPECT_EQ(outline(song), "V1: a/b | V2: c") << text;
    }
}

TEST(SongTextTest, TheReadersAddToTheSongWithoutClearingIt) {
    Song song;
    song.info().setTitle("Kept");
    ASSERT_EQ(song.loadFromTextString("one"), StatusSuccess);
    ASSERT_EQ(song.loadFromTextString("\ttwo"), StatusSuccess);
    EXPECT_EQ(outline(song), "V1: one | C1: two");
    EXPECT_EQ(song.info().title(), "Kept");

    ASSERT_EQ(song.loadFromTextString(" \t\n\n\t \n"), StatusSuccess);
    EXPECT_EQ(song.getSectionCount(), 2);

    TempFolder folder;
    EXPECT_EQ(song.loadFromTextFile(folder.file("missing.txt")), Status(ENOENT));
    EXPECT_EQ(outline(song), "V1: one | C1: two");
    EXPECT_EQ(song.info().title(), "Kept");
}

TEST(SongTextTest, WritesTheIdBeforeTheFirstLineAndBlankLinesBetweenSections) {
    Song song;
    song.uuid("id");
    song.updated(LocalTime(2023, 12, 24, 23, 0, 5));
    song.info().setTitle("not written");
    auto addSection = [&](int type, std::initializer_list<const char*> lines) {
        auto* section = new SongSection(type);
        for (const char* text : lines) {
            auto* line = new SongLine;
            line->setText(text);
            line->addChord(SongChord("G", 1));
            section->addLine(line);
        }
        song.addSection(section);
        return section;
    };
    addSection(SectionType::Verse, {"Silent night", "holy night"});
    addSection(SectionType::Chorus, {"Sleep in heavenly peace"});
    addSection(SectionType::Verse, {"sleep in heavenly peace"})->keepWithPrevious(true);
    addSection(SectionType::Bridge, {});
    addSection(SectionType::Verse, {"Shepherds quake"});
    song.generateSectionIDs();

    const String text = song.saveToText(SongFileType::Text, true);
    EXPECT_EQ(text,
              "<uuid>id</uuid><updated>20231224230005</updated>Silent night\n"
              "holy night\n"
              "\n"
              "Sleep in heavenly peace\n"
              "sleep in heavenly peace\n"
              "\n"
              "\n"
              "Shepherds quake\n");

    TempFolder folder;
    const String path = folder.file("night.txt");
    ASSERT_EQ(song.saveToFile(path, SongFileType::Text), StatusSuccess);
    EXPECT_EQ(folder.read("night.txt"), replaceAll(text, "\n", "\r\n"));

    // The chorus reads back as a verse, the kept section joins the one before
    // it and the id stays in the first line.
    Song back;
    ASSERT_EQ(back.loadFromFile(path), StatusSuccess);
    EXPECT_EQ(back.loadedFileType(), SongFileType::Text);
    EXPECT_EQ(back.filename(), path);
    EXPECT_EQ(back.uuid(), "");
    EXPECT_EQ(outline(back),
              "V1: <uuid>id</uuid><updated>20231224230005</updated>Silent night/holy night"
              " | V2: Sleep in heavenly peace/sleep in heavenly peace | V3: Shepherds quake");
}

TEST(SongTextTest, TextFilesInOtherEncodingsReadTheSame) {
    TempFolder folder;
    const String text = "Stille Nacht\r\nAlles schläft\r\n\r\n\tHoly infant\r\n";
    const std::pair<const char*, String> files[] = {
        {"utf8.txt", text},
        {"bom.txt", "\xEF\xBB\xBF" + text},
        {"utf16.txt", encodeUtf16LE(text, true)},
        {"cp1252.txt", replaceAll(text, "ä", "\xE4")},
    };
    for (const auto& [name, bytes] : files) {
        Song song;
        ASSERT_EQ(song.loadFromFile(folder.write(name, bytes)), StatusSuccess) << name;
        EXPECT_EQ(outline(song), "V1: Stille Nacht/Alles schläft | C1: Holy infant") << name;
        Song fromMemory;
        ASSERT_EQ(fromMemory.loadFromText(bytes), StatusSuccess) << name;
        EXPECT_EQ(outline(fromMemory), outline(song)) << name;
    }
}

}  // namespace
}  // namespace melodex
