#include "melodex/ui/display_stage.h"

#include <gtest/gtest.h>

#include "melodex/music/song_chord.h"
#include "melodex/song/song.h"
#include "melodex/song/song_line.h"
#include "melodex/song/song_section.h"
#include "melodex/song/vocabulary.h"
#include "melodex/ui/display_status.h"

namespace melodex {
namespace {

SongSection* section(int type, const char* id, std::initializer_list<const char*> lines) {
    auto* out = new SongSection(type);
    out->id(id);
    for (const char* text : lines) {
        auto* line = new SongLine;
        line->setText(text);
        out->addLine(line);
    }
    return out;
}

Song hymn() {
    Song song;
    song.info().setTitle("Jésus, Lumière");
    song.info().setKey("G");
    song.info().setAttribute("capo", "2");
    song.info().setAttribute("tempo", "72");
    song.addSection(
        section(SectionType::Verse, "V1", {"Jésus, lumière du monde", "Guide nos pas"}));
    song.getSection(0)->getLine(0)->addChord(SongChord("G", 0));
    song.getSection(0)->getLine(0)->addChord(
        SongChord("D/F#", 7));  // after "Jésus, " in characters
    song.addSection(section(SectionType::Chorus, "C", {"Alléluia"}));
    return song;
}

TEST(DisplayStageTest, TakesASectionWithItsChordsAndTheNextOne) {
    const Song song = hymn();
    const DisplayStage stage = DisplayStage::fromSong(song, 0, 2);
    EXPECT_EQ(stage.title, "Jésus, Lumière");
    EXPECT_EQ(stage.section, "Verse 1");
    EXPECT_EQ(stage.key, "A");
    EXPECT_EQ(stage.capo, 2);
    EXPECT_EQ(stage.tempo, 72);
    EXPECT_EQ(stage.transpose, 2);
    ASSERT_EQ(stage.current.size(), 2u);
    EXPECT_EQ(stage.current[0].chords, (std::vector<StageChord>{{0, "A"}, {7, "E/G#"}}));
    ASSERT_EQ(stage.next.size(), 1u);
    EXPECT_EQ(stage.next[0].text, "Alléluia");

    const DisplayStage last = DisplayStage::fromSong(song, 1);
    EXPECT_EQ(last.section, "Chorus");
    EXPECT_TRUE(last.next.empty());
    EXPECT_TRUE(DisplayStage::fromSong(song, 5).current.empty());
    EXPECT_EQ(DisplayStage::findSection(song, "c"), 1);
    EXPECT_EQ(DisplayStage::findSection(song, "V9"), -1);
}

TEST(DisplayStageTest, TravelsThroughJsonUnchanged) {
    const DisplayStage stage = DisplayStage::fromSong(hymn(), 0, -3);
    DisplayStage back;
    ASSERT_TRUE(back.fromJson(stage.toJson()));
    EXPECT_EQ(back, stage);
}

TEST(DisplayStageTest, RefusesWrongTypesAndValuesBeyondTheLimits) {
    const std::pair<const char*, const char*> cases[] = {
        {R"([1])", "the stage must be a JSON object"},
        {R"({"title":5})", "title must be a string"},
        {R"({"capo":12})", "capo must be an integer from 0 to 11"},
        {R"({"transpose":1.5})", "transpose must be an integer from -11 to 11"},
        {R"({"tempo":-1})", "tempo must be an integer from 0 to 400"},
        {R"({"current":"Amazing grace"})", "current must be an array of at most 200 lines"},
        {R"({"next":[7]})", "next holds a line that is not an object"},
        {R"({"current":[{"text":"a","chords":[{"offset":"x"}]}]})",
         "offset must be an integer from 0 to 4096"},
        {R"({"current":[{"text":"a","chords":[3]}]})", "current: a chord must be an object"},
    };
    DisplayStage stage = DisplayStage::fromSong(hymn(), 0);
    const DisplayStage before = stage;
    for (const auto& [json, message] : cases) {
        String error;
        EXPECT_FALSE(stage.fromJson(json, &error)) << json;
        EXPECT_EQ(error, message) << json;
    }
    EXPECT_EQ(stage, before);
    EXPECT_FALSE(stage.fromJson("{\"title\":\"" + String(4097, 'a') + "\"}"));
}

TEST(DisplayStatusTest, TravelsThroughJsonAndNamesItsWords) {
    DisplayStatus status;
    status.seq = 12;
    DisplayScreenState& main = status.screen(DisplayScreen::Main);
    main.background = {"/slides/sky.png", "/image/1", ImageMode::Stretch,
                       DisplayTransition::fade(400)};
    main.blank = DisplayBlank::White;
    main.viewers = 2;
    main.shownSeq = 11;
    DisplayScreenState& stage = status.screen(DisplayScreen::Stage);
    stage.hasStage = true;
    stage.stage = DisplayStage::fromSong(hymn(), 1);
    DisplayStatus back;
    ASSERT_TRUE(back.fromJson(status.toJson()));
    EXPECT_EQ(back, status);
    EXPECT_FALSE(back.fromJson("{\"seq\":1}"));
    EXPECT_EQ(back, status);

    int mode = -1;
    EXPECT_TRUE(imageModeFromName("center", mode));
    EXPECT_EQ(mode, ImageMode::Centre);
    EXPECT_TRUE(imageModeFromName("2", mode));
    EXPECT_EQ(imageModeName(mode), "stretch");
    EXPECT_FALSE(imageModeFromName("tile", mode));
    DisplayBlank blank = DisplayBlank::None;
    EXPECT_FALSE(blankFromName("BLACK", blank));  // the protocol's words are lower case
}

}  // namespace
}  // namespace melodex
