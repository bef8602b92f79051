#include "melodex/display/song_display_profile.h"

#include <array>
#include <cerrno>
#include <tuple>

#include <gtest/gtest.h>

#include "melodex/foundation/text_encoding.h"
#include "melodex/foundation/xml.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

SongDisplayProfile chordsProfile() {
    SongDisplayProfile profile;
    profile.create("Chords", "Chords", 3, 0xD8F33, 18, 0, false, false, false);
    return profile;
}

// --- The model -----------------------------------------------------------------------

TEST(SongDisplayProfileTest, ClearedProfilesShowNothingButKeepTheirWidthAndKeys) {
    SongDisplayProfile profile = chordsProfile();
    profile.setColumns(2, 300, 10);
    profile.transpose(3);
    profile.setCurrentKey(5);
    profile.clear();
    for (const SongDisplayProfile& p : {SongDisplayProfile(), profile}) {
        EXPECT_EQ(std::tuple(p.columns(), p.columnGap(), p.flags(), p.transpose(),
                             p.getCurrentKey(), p.getLineColorCount()),
                  std::tuple(0, 0, 0, 0, 0, 0));
        EXPECT_EQ(p.pageBackgroundColor(), 0ul);
        EXPECT_EQ(p.name(), "");
        EXPECT_EQ(p.getNoteName(1, 0), "");  // no spelling table: no crash, no name
        EXPECT_EQ(p.style(StyleKind::Chord), SongTextStyle());
    }
    // What clear() leaves alone.
    EXPECT_EQ(profile.columnWidth(), 300);
    EXPECT_EQ(profile.getKeyName(3), "Eb");
    EXPECT_EQ(SongDisplayProfile().getKeyName(3), "");
}

TEST(SongDisplayProfileTest, FlagNamesListKnownBitsAndTheRestInHex) {
    EXPECT_EQ(SongDisplayProfile::flagNames(0x1081),
              (StringArray{"words", "shrinktofit", "0x1000"}));
}

TEST(SongDisplayProfileTest, KeysAndNotesAreTakenModuloTwelve) {
    const SongDisplayProfile profile = chordsProfile();
    EXPECT_EQ(profile.getKeyName(-1), profile.getKeyName(11));
    EXPECT_EQ(profile.getKeyName(-1), "B");
    EXPECT_EQ(profile.getNoteName(0, 13, 0), profile.getNoteName(0, 1, 0));
    EXPECT_EQ(profile.getNoteName(8, -11, 0), "Db");
    for (int key = 0; key < 12; ++key) {
        for (int note = 0; note < 12; ++note)
            EXPECT_EQ(profile.getNoteName(key, note, -3), profile.getNoteName(key, note, 0));
    }
    EXPECT_EQ(profile.getNoteName(0, 9, 3), "C");   // row 3, column 0
    EXPECT_EQ(profile.getNoteName(5, 3, 3), "Gb");  // row 8, column 6

    SongDisplayProfile edited;
    edited.setNoteName(-4, 13, "Cis");  // grows the table: row 8, column 1
    EXPECT_EQ(edited.getNoteName(8, 1, 0), "Cis");
    EXPECT_EQ(edited.getNoteName(0, 1, 0), "");
    edited.setKeyName(14, "Dee");
    EXPECT_EQ(edited.getKeyName(2), "Dee");
}

TEST(SongDisplayProfileTest, PerKeyDefaultsAreZeroOutsideTheKeys) {
    SongDisplayProfile profile;
    profile.create("Guitar", "Guitar", 3, 0x3, 18, 0, false, true, true);
    const std::array<int, 12> capo = {0, 1, 0, 1, 0, 3, 4, 0, 1, 0, 3, 4};
    const std::array<int, 12> local = {0, -1, 0, 0, 0, 0, -1, 0, -1, 0, 0, 1};
    for (int key = 0; key < 12; ++key) {
        EXPECT_EQ(profile.defaultCapoPosition(key), capo[std::size_t(key)]) << key;
        EXPECT_EQ(profile.defaultLocalTranspose(key), local[std::size_t(key)]) << key;
    }
    EXPECT_EQ(profile.defaultCapoPosition(12), 0);
    EXPECT_EQ(profile.defaultCapoPosition(-1), 0);
    EXPECT_EQ(profile.defaultLocalTranspose(12), 0);
    profile.defaultCapoPosition(12, 5);  // ignored
    EXPECT_EQ(profile.defaultCapoPosition(0), 0);

    SongDisplayProfile plain;
    plain.create("Plain", "Plain", 3, 0x3, 18, 0, false, false, false);
    EXPECT_EQ(plain.defaultCapoPosition(5), 0);
    EXPECT_EQ(plain.defaultLocalTranspose(1), 0);
}

TEST(SongDisplayProfileTest, CreateFillsColoursAndStylesFromTheLightOrDarkScheme) {
    SongDisplayProfile dark;
    dark.create("Dark", "Dark", 1, 0xB01, 30, 0, true, false, false);
    EXPECT_EQ(dark.pageBackgroundColor(), 0x000000ul);
    EXPECT_EQ(dark.highlightBackgroundColor(), 0x004080ul);
    EXPECT_EQ(dark.style(StyleKind::Verse).FontColor, 0xFFFFFFul);
    EXPECT_EQ(dark.style(StyleKind::Bridge).FontColor, 0xC4FFC4ul);
    EXPECT_EQ(dark.getLineColor(3), 0xC40009ul);
    EXPECT_EQ(dark.getLineColorCount(), 10);

    // The light scheme and the sizes from the base are in the file
    // display/Words.sdp; a secondary size scales every minimum.
    EXPECT_EQ(chordsProfile().getLineColor(10), 0ul);
    SongDisplayProfile print;
    print.create("LargePrint", "Large Print", 2, 0xC31, 24, 20, false, false, false);
    EXPECT_EQ(print.style(StyleKind::Verse).FontMinPtSize, 20.0);
    EXPECT_EQ(print.style(StyleKind::Copyright).FontMinPtSize, 20.0 / 24.0 * 9.0);
}

TEST(SongDisplayProfileTest, SectionTypesTwoToEightHaveTheirOwnFont) {
    SongDisplayProfile profile = chordsProfile();
    profile.style(StyleKind::Verse).FontName = "Verse face";
    profile.style(StyleKind::Tag).FontName = "Tag face";
    EXPECT_EQ(profile.getFontForSectionType(0, 1.0).face, "Verse face");
    EXPECT_EQ(profile.getFontForSectionType(9, 1.0).face, "Verse face");
    EXPECT_EQ(profile.getFontForSectionType(5, 1.0).face, "Tag face");
    EXPECT_TRUE(profile.getFontForSectionType(2, 1.0).italic);     // Chorus
    EXPECT_EQ(profile.getFont(StyleKind::Chord, 1.5).size, 12.0);  // 18, capped at 12
}

// --- The .sdp file ------------------------------------------------------------------

TEST(SongDisplayProfileFileTest, WritesTheHouseLayout) {
    SongDisplayProfile words;
    words.create("Words", "Words", 3, 0x18F31, 18, 0, false, false, false);
    const test::TempFolder folder;
    EXPECT_EQ(words.saveToText(), folder.read(test::testDataPath("display/Words.sdp")));
}

TEST(SongDisplayProfileFileTest, ReadsBackWhatItWrites) {
    SongDisplayProfile profile;
    profile.create("Band & <Choir>", "Band \"plus\" Choir", 0x2A, 0xFFF7F, 20, 14, true, true,
                   true);
    profile.transpose(-2);
    profile.highlightFadeTime(4);
    profile.highlightBackgroundColor(0x010203);
    profile.setLineColor(7, 0x123456);
    profile.style(StyleKind::Chord).FontName = "Courier";
    profile.style(StyleKind::Chord).FontStyle = SongTextStyle::Bold;
    profile.setKeyName(6, "Gb");
    profile.defaultCapoPosition(2, 7);
    profile.defaultLocalTranspose(9, -3);
    profile.setNoteName(4, 8, "Ab");
    profile.setNoteName(10, 1, "Db");
    profile.shrinkToFit(false);

    const test::TempFolder folder;
    const String path = folder.file("Band.sdp");
    ASSERT_EQ(profile.saveToFile(path), StatusSuccess);
    EXPECT_EQ(profile.filename(), path);
    SongDisplayProfile back;
    ASSERT_EQ(back.loadFromFile(path), StatusSuccess);
    EXPECT_EQ(back.filename(), path);
    EXPECT_EQ(back.name(), "Band & <Choir>");
    EXPECT_EQ(back.title(), "Band \"plus\" Choir");
    EXPECT_EQ(back.flags(), 0xFFF7F & ~0x1080);  // no shrink-to-fit, no bit 12
    EXPECT_EQ(back.getNoteName(4, 8, 0), "Ab");
    EXPECT_EQ(back.defaultLocalTranspose(9), -3);
    // Everything else the file holds comes back as it was written.
    EXPECT_EQ(back.saveToText(), profile.saveToText());
}

TEST(SongDisplayProfileFileTest, KeepsTheSettledAsymmetries) {
    SongDisplayProfile profile = chordsProfile();
    profile.shrinkToFit(true);
    profile.highlightFadeTime(2.5);
    const String text = profile.saveToText();
    EXPECT_NE(text.find("\t\t<highlightFadeTime>2.5</highlightFadeTime>\n"), String::npos);
    SongDisplayProfile back;
    ASSERT_EQ(back.loadFromText(text), StatusSuccess);
    EXPECT_FALSE(back.shrinkToFit());
    EXPECT_EQ(back.highlightFadeTime(), 2.0);  // read as whole seconds

    // Bold and italic are read one way: a style that is not bold reads back
    // bold when the default style is.
    profile.style(StyleKind::Default).FontStyle = SongTextStyle::Bold;
    ASSERT_EQ(back.loadFromText(profile.saveToText()), StatusSuccess);
    EXPECT_EQ(profile.style(StyleKind::Chorus).FontStyle, SongTextStyle::Italic);
    EXPECT_EQ(back.style(StyleKind::Chorus).FontStyle, SongTextStyle::Italic | SongTextStyle::Bold);
}

TEST(SongDisplayProfileFileTest, ReadsPartialDocumentsLeniently) {
    SongDisplayProfile profile = chordsProfile();
    EXPECT_EQ(profile.loadFromText("<profiles><other/></profiles>"), StatusFailed);
    EXPECT_EQ(profile.name(), "");  // cleared
    EXPECT_EQ(profile.flags(), 0);
    EXPECT_EQ(profile.lastError().status, StatusFailed);

    // Only a default style: twenty copies of it. An unknown style name loads
    // into style 0 after the copies were made; a key or chord index of 12 or
    // more, or below 0, is ignored.
    ASSERT_EQ(profile.loadFromText(R"(<?xml version="1.0"?>
<profile xmlns="brackwell/songdisplayprofile">
  <name>Partial</name>
  <display><chords>1</chords><bass>yes</bass><words>0</words><transpose>x</transpose></display>
  <linecolors><Women>red</Women><audience>#00ff00</audience></linecolors>
  <textstyles>
    <default><FontName>Georgia</FontName><Bold>1</Bold></default>
    <style name="Refrain"><FontPtSize>40</FontPtSize></style>
    <style><FontPtSize>50</FontPtSize></style>
  </textstyles>
  <keys>
    <key index="12" name="X"><capo>5</capo></key>
    <key index="-1" name="Y"><capo>5</capo></key>
    <key index="2" name="Re"><capo>2</capo><chord index="12">Z</chord><chord index="1">Des</chord></key>
  </keys>
</profile>)"),
              StatusSuccess);
    EXPECT_EQ(profile.name(), "Partial");
    EXPECT_EQ(profile.type(), 0);
    EXPECT_EQ(profile.flags(), 0x6);
    EXPECT_EQ(profile.transpose(), 0);
    EXPECT_EQ(profile.pageBackgroundColor(), 0ul);
    EXPECT_EQ(profile.highlightFadeTime(), 3.0);
    EXPECT_EQ(profile.getLineColor(2), 0x0000FFul);
    EXPECT_EQ(profile.getLineColor(9), 0x00FF00ul);
    EXPECT_EQ(profile.getLineColor(1), 0ul);
    SongTextStyle georgia;
    georgia.FontName = "Georgia";
    georgia.FontStyle = SongTextStyle::Bold;
    for (int kind = 1; kind < StyleKind::Count; ++kind)
        EXPECT_EQ(profile.style(kind), georgia) << kind;
    EXPECT_EQ(profile.style(0).FontPtSize, 40.0);
    // Keys that the file does not name keep what they had.
    EXPECT_EQ(profile.getKeyName(0), "C");
    EXPECT_EQ(profile.getKeyName(11), "B");
    EXPECT_EQ(profile.getKeyName(2), "Re");
    EXPECT_EQ(profile.defaultCapoPosition(2), 2);
    EXPECT_EQ(profile.getNoteName(2, 1, 0), "Des");
    EXPECT_EQ(profile.getNoteName(2, 0, 0), "");  // the table was cleared
}

TEST(SongDisplayProfileFileTest, ReadsUtf16AndRefusesWhatDoesNotParse) {
    const SongDisplayProfile words = [] {
        SongDisplayProfile profile;
        profile.create("Wörter", "Wörter", 1, 0x1, 18, 0, false, false, false);
        return profile;
    }();
    const test::TempFolder folder;
    const String path = folder.write("utf16.sdp", encodeUtf16LE(words.saveToText(), true));
    SongDisplayProfile back;
    ASSERT_EQ(back.loadFromFile(path), StatusSuccess);
    EXPECT_EQ(back.name(), "Wörter");
    EXPECT_EQ(back.saveToText(), words.saveToText());

    SongDisplayProfile kept = chordsProfile();
    EXPECT_NE(kept.loadFromFile(folder.write("broken.sdp", "<profile><name>")), StatusSuccess);
    EXPECT_EQ(kept.name(), "Chords");  // a document that does not parse changes nothing
    EXPECT_EQ(kept.lastError().action, FileError::Action::Read);
    EXPECT_EQ(kept.loadFromFile(folder.file("missing.sdp")), Status(ENOENT));

    SongDisplayProfile unnamed = chordsProfile();
    EXPECT_EQ(unnamed.save(), Status(ENOENT));
    EXPECT_NE(unnamed.saveToFile(folder.file("no/such/folder.sdp")), StatusSuccess);
    EXPECT_EQ(unnamed.lastError().action, FileError::Action::Write);
    EXPECT_EQ(unnamed.filename(), "");
}

TEST(SongDisplayProfileFileTest, TargetWordsReadAndWrite) {
    EXPECT_EQ(SongDisplayProfile::targetsToString(3), "screen, print");
    EXPECT_EQ(SongDisplayProfile::targetsToString(0), "none");
    EXPECT_EQ(SongDisplayProfile::targetsToString(0x48), "beamwrightfollower, 64");
    EXPECT_EQ(SongDisplayProfile::targetsFromString("Viewer, print"), 34);
    EXPECT_EQ(SongDisplayProfile::targetsFromString("8"), 8);
    EXPECT_EQ(SongDisplayProfile::targetsFromString("screen,tv"), std::nullopt);
    EXPECT_EQ(SongDisplayProfile::targetsFromString(""), std::nullopt);
    EXPECT_EQ(SongDisplayProfile::targetsFromString("-1"), std::nullopt);
}

}  // namespace
}  // namespace melodex
