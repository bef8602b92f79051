#include "melodex/song/opensong_lyrics.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "melodex/song/song.h"
#include "support/song_builders.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using namespace test;

// Every case under opensong_lyrics/ gives the sections written below its
// lyrics: the whole point of the format is that chords land over the letters
// a musician sees them over.
TEST(OpenSongLyricsTest, EveryCaseGivesItsSectionsChordByChord) {
    int cases = 0;
    for (const auto& entry : std::filesystem::directory_iterator(testDataPath("opensong_lyrics"))) {
        if (entry.path().extension() != ".txt") continue;
        SCOPED_TRACE(entry.path().filename().string());
        ++cases;
        const String text = goldenText("opensong_lyrics/" + entry.path().filename().string());
        const std::size_t split = text.find("=====\n");
        ASSERT_NE(split, String::npos);
        String sections;
        for (const auto& [name, section] : OpenSongLyrics::read(text.substr(0, split))) {
            sections += "[" + name + "] " + sectionTypeToString(section->type()) + "\n";
            for (int i = 0; i < section->getLineCount(); ++i)
                sections += "  " + inlined(*section->getLine(i)) + "\n";
        }
        EXPECT_EQ(sections, text.substr(split + 6));
    }
    EXPECT_GE(cases, 15);
}

TEST(OpenSongLyricsTest, HugeRowsCostTheirLengthOnly) {
    const std::size_t size = 10 * 1024 * 1024;
    auto sections = OpenSongLyrics::read("[V]\n.G\n " + String(size, '_') + "x\n");
    ASSERT_EQ(sections.size(), 1u);
    EXPECT_EQ(inlined(*sections[0].section->getLine(0)), "[G]x");

    // Every break makes a line, so a smaller row is enough here. The "|" at
    // the end leaves an empty line.
    String broken = "[V]\n ";
    for (std::size_t i = 0; i < size / 64; ++i)
        broken += "a|||";
    sections = OpenSongLyrics::read(broken);
    ASSERT_EQ(sections.size(), 1u);
    EXPECT_EQ(std::size_t(sections[0].section->getLineCount()), size / 64 + 1);
}

// Every song file under opensong/ reads as its ".expected" file says, section by
// section and chord by chord, and survives a round trip through a ".song" file.
TEST(OpenSongFileTest, EverySongReadsAsItsGoldenFileSays) {
    TempFolder folder;
    int songs = 0;
    for (const auto& entry : std::filesystem::directory_iterator(testDataPath("opensong"))) {
        if (entry.path().extension() != "") continue;
        const String name = entry.path().filename().string();
        SCOPED_TRACE(name);
        ++songs;
        Song song;
        ASSERT_EQ(song.loadFromFile(entry.path().string()), StatusSuccess);
        EXPECT_EQ(describe(song), goldenText("opensong/" + name + ".expected"));

        const String path = folder.file(name + ".song");
        ASSERT_EQ(song.saveToFile(path, SongFileType::Song), StatusSuccess);
        Song back;
        ASSERT_EQ(back.loadFromFile(path), StatusSuccess);
        // An OpenSong "theme" comes back as a category, as the native reader
        // reads it; the rest of the information and every chord stay.
        for (const SongInfo::Attribute& attribute : song.info().attributes()) {
            if (attribute.name != "theme") {
                EXPECT_EQ(back.info().getAttribute(attribute.name), attribute.value);
            }
        }
        EXPECT_EQ(outline(back), outline(song));
    }
    EXPECT_GE(songs, 10);
}

}  // namespace
}  // namespace melodex
