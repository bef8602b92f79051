#include "melodex/song/song_conversion.h"

#include <gtest/gtest.h>

#include "support/song_builders.h"

namespace melodex {
namespace {

using test::lineOf;

TEST(SongConversionTest, ExtensionsNameTheTypesThatAreWritten) {
    const std::pair<const char*, int> cases[] = {
        {"Hymn.song", SongFileType::Song},
        {"dir.x/Hymn.XML", SongFileType::Song},
        {"Hymn.Txt", SongFileType::Text},
        {"Hymn.sng", SongFileType::Sng},
        {"Hymn.pdf", 0},
        {"Hymn.chopro", 0},
        {"Hymn", 0},
        {"-", 0},
    };
    for (const auto& [path, type] : cases)
        EXPECT_EQ(songFileTypeForPath(path), type) << path;
}

TEST(SongConversionTest, EachTypeNamesOnlyWhatTheSongHasAndTheTypeCannotHold) {
    Song plain;
    plain.clear();  // no key: no information at all
    auto* verse = new SongSection(SectionType::Verse);
    verse->addLine(lineOf("Amazing grace"));
    plain.addSection(verse);
    for (int type : {SongFileType::Song, SongFileType::Text, SongFileType::Sng})
        EXPECT_EQ(dataLostBySaving(plain, type), StringArray{}) << type;

    Song full;
    full.info().setTitle("Hymn");
    full.info().addIndex("Other name");
    auto* chorus = new SongSection(SectionType::Chorus);
    chorus->addLine(lineOf("Alleluia", {{"G", 0}}));
    chorus->getLine(0)->singers(1);
    chorus->repeat(2);
    chorus->indent(1);
    full.addSection(chorus);
    EXPECT_EQ(dataLostBySaving(full, SongFileType::Song),
              StringArray{"the section singers and indents"});
    EXPECT_EQ(dataLostBySaving(full, SongFileType::Sng),
              (StringArray{"the chords", "the index entries and categories",
                           "the section types (every section reads back as a verse)",
                           "the line settings (singers, indent, repeat ...)",
                           "the section settings (repeat, target, spacing ...)",
                           "the section singers and indents"}));
    EXPECT_EQ(dataLostBySaving(full, SongFileType::Text),
              (StringArray{"the chords", "the information (title, author, key ...)",
                           "the section types (every section reads back as a verse)",
                           "the line settings (singers, indent, repeat ...)",
                           "the section settings (repeat, target, spacing ...)",
                           "the section singers and indents"}));
    EXPECT_EQ(dataLostBySaving(full, SongFileType::OpenSong),
              StringArray{"everything (this type is read only)"});
}

}  // namespace
}  // namespace melodex
