// The process-wide profile list over a folder of .sdp files.

#include <algorithm>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "melodex/display/song_display_profile.h"
#include "melodex/foundation/file_system.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using List = SongDisplayProfile;

class ProfileListTest : public ::testing::Test {
protected:
    ProfileListTest() { List::setProfileFolder(m_folder.path()); }
    ~ProfileListTest() override { List::setProfileFolder({}); }

    const String& folder() const { return m_folder.path(); }

    StringArray files() const {
        StringArray names;
        for (const FolderItem& item : listFolder(folder()).value_or(std::vector<FolderItem>()))
            names.push_back(item.name);
        return names;
    }

    StringArray listed() const {
        StringArray names;
        for (int i = 0; i < List::getProfileCount(); ++i)
            names.push_back(List::getProfile(i)->name() + "/" +
                            std::to_string(List::getProfile(i)->type()));
        return names;
    }

    test::TempFolder m_folder;
};

TEST_F(ProfileListTest, AnEmptyFolderGetsTheHouseAndProgramProfiles) {
    List::loadProfileList();
    EXPECT_EQ(listed(),
              (StringArray{"Words/3", "Chords/3", "GuitarWithCapo/3", "PianoWithLocalTranspose/3",
                           "Bass/3", "LargePrint/1", "LargePrint/2", "LargePrintInverted/1",
                           "ExtraLargePrint/1", "ExtraLargePrintInverted/1", "BeamwrightFollower/8",
                           "Scrivel/16", "GlancerWords/34", "GlancerChords/34",
                           "GlancerLargePrint/32", "GlancerLargePrint/2"}));
    EXPECT_EQ(
        files(),
        (StringArray{"Bass.sdp", "BeamwrightFollower.sdp", "Chords.sdp",
                     "ExtraLargePrint (Screen).sdp", "ExtraLargePrintInverted (Screen).sdp",
                     "GlancerChords.sdp", "GlancerLargePrint (Print).sdp",
                     "GlancerLargePrint (Screen).sdp", "GlancerWords.sdp", "GuitarWithCapo.sdp",
                     "LargePrint (Screen).sdp", "LargePrintInverted (Screen).sdp",
                     "PianoWithLocalTranspose.sdp", "Scrivel.sdp", "Words.sdp"}));
    EXPECT_FALSE(List::lastListError());
    EXPECT_EQ(List::getProfile(0)->filename(), joinPath(folder(), "Words.sdp"));
    EXPECT_EQ(List::getProfile(6)->filename(), "");  // printed Large Print: never written

    // Row 4 is made with the capo defaults, not the local-transpose ones.
    const SongDisplayProfile* piano = List::getProfileByName("PianoWithLocalTranspose", 0);
    EXPECT_EQ(piano->defaultCapoPosition(5), 3);
    EXPECT_EQ(piano->defaultLocalTranspose(1), 0);
    EXPECT_EQ(List::getProfileByName("Words", 0)->defaultCapoPosition(5), 0);
    EXPECT_EQ(List::getProfileByName("LargePrintInverted", 0)->pageBackgroundColor(), 0ul);

    // Read back from the files, the list is the same but for the printed
    // Large Print, which only an empty folder has.
    const String before = List::getProfileByName("GlancerChords", 0)->saveToText();
    List::loadProfileList();
    EXPECT_EQ(List::getProfileCount(), 15);
    EXPECT_EQ(List::getProfileIndex("LargePrint", 2), -1);
    EXPECT_EQ(List::getProfileByName("GlancerChords", 0)->saveToText(), before);
}

// Programs that only show songs leave the folder as they found it.
TEST_F(ProfileListTest, AReadOnlyListWritesNothing) {
    List::setProfileListReadOnly(true);
    List::loadProfileList();
    EXPECT_EQ(List::getProfileCount(), 16);
    EXPECT_TRUE(files().empty());
    EXPECT_FALSE(List::lastListError());
    EXPECT_EQ(List::getProfileByName("Chords", 0)->filename(), "");

    List::setProfileFolder({});  // no folder: no failure to report either
    List::loadProfileList();
    EXPECT_EQ(List::getProfileCount(), 16);
    EXPECT_FALSE(List::lastListError());
    List::setProfileListReadOnly(false);
}

TEST_F(ProfileListTest, AFolderWithOnlyWordsGetsTheProgramProfilesOnly) {
    SongDisplayProfile words;
    words.create("Words", "My Words", 3, 0x1, 20, 0, false, false, false);
    ASSERT_EQ(words.saveToFile(joinPath(folder(), "Words.sdp")), StatusSuccess);
    List::loadProfileList();
    EXPECT_EQ(listed(),
              (StringArray{"Words/3", "BeamwrightFollower/8", "Scrivel/16", "GlancerWords/34",
                           "GlancerChords/34", "GlancerLargePrint/32", "GlancerLargePrint/2"}));
    EXPECT_EQ(List::getProfile(0)->title(), "My Words");
    EXPECT_EQ(List::getProfileByName("Chords", 0), nullptr);
    EXPECT_EQ(files().size(), 7u);
}

TEST_F(ProfileListTest, ProgramProfilesComeOnlyWhenTheirNameIsMissing) {
    // One viewer Large Print profile is there: its name is, so the other is
    // not made; a profile file whose name differs from the profile's counts
    // by the profile's name.
    SongDisplayProfile viewer;
    viewer.create("GlancerLargePrint", "Mine", 32, 0x1, 30, 0, false, false, false);
    ASSERT_EQ(viewer.saveToFile(joinPath(folder(), "viewer.sdp")), StatusSuccess);
    List::loadProfileList();
    EXPECT_EQ(List::getProfileIndex("GlancerLargePrint", 2), -1);
    EXPECT_EQ(List::getProfileByName("GlancerLargePrint", 32)->title(), "Mine");
    EXPECT_EQ(List::getProfileCount(), 5);
}

TEST_F(ProfileListTest, LookupsTakeATypeMaskAndExactNames) {
    List::loadProfileList();
    const std::tuple<const char*, int, int> cases[] = {
        {"LargePrint", 2, 6}, {"LargePrint", 1, 5},      {"LargePrint", 0, 5},
        {"LargePrint", 3, 5}, {"LargePrint", 4, -1},     {"largeprint", 0, -1},
        {"Chords", 32, -1},   {"GlancerChords", 32, 13}, {"", 0, -1},
    };
    for (const auto& [name, mask, index] : cases) {
        EXPECT_EQ(List::getProfileIndex(name, mask), index) << name << " " << mask;
        EXPECT_EQ(List::getProfileByName(name, mask), List::getProfile(index));
    }
    EXPECT_EQ(List::getProfile(-1), nullptr);
    EXPECT_EQ(List::getProfile(16), nullptr);

    SongDisplayProfile mine;
    mine.name("Mine");
    SongDisplayProfile* added = List::addProfile(mine);
    EXPECT_EQ(List::getProfileByName("Mine", 0), added);
    EXPECT_EQ(List::getProfileCount(), 17);
}

TEST_F(ProfileListTest, ReadsSdpFilesOfAnyCaseAndSkipsTheRest) {
    SongDisplayProfile profile;
    profile.create("Upper", "Upper", 1, 0x1, 18, 0, false, false, false);
    ASSERT_EQ(profile.saveToFile(joinPath(folder(), "X.SDP")), StatusSuccess);
    profile.name("NotAProfileFile");
    ASSERT_EQ(profile.saveToFile(joinPath(folder(), "X.sdp.bak")), StatusSuccess);
    ASSERT_TRUE(createFolders(joinPath(folder(), "Folder.sdp")));
    m_folder.write("Broken.sdp", "<profile><name>Broken");
    m_folder.write("Other.sdp", "<other/>");

    List::loadProfileList();
    EXPECT_EQ(listed(),
              (StringArray{"Upper/1", "BeamwrightFollower/8", "Scrivel/16", "GlancerWords/34",
                           "GlancerChords/34", "GlancerLargePrint/32", "GlancerLargePrint/2"}));
    EXPECT_EQ(List::lastListError().action, FileError::Action::Read);
    EXPECT_EQ(List::lastListError().path, joinPath(folder(), "Broken.sdp"));
}

TEST_F(ProfileListTest, NeverOverwritesAProfileFileThatDidNotLoad) {
    const String broken = m_folder.write("Words.sdp", "<profile><name>Words</name>");
    List::loadProfileList();
    EXPECT_EQ(List::getProfileCount(), 16);  // nothing loaded: the house profiles
    EXPECT_EQ(m_folder.read("Words.sdp"), "<profile><name>Words</name>");
    EXPECT_TRUE(isXmlStatus(List::lastListError().status));
    EXPECT_EQ(files().size(), 15u);
}

TEST_F(ProfileListTest, WithoutAFolderTheBuiltInProfilesLiveInMemory) {
    List::setProfileFolder({});
    List::loadProfileList();
    EXPECT_EQ(List::getProfileCount(), 16);
    EXPECT_EQ(List::lastListError().status, StatusNoFolder);
    EXPECT_TRUE(files().empty());

    List::setProfileFolder(joinPath(folder(), "missing"));
    List::loadProfileList();
    EXPECT_EQ(List::getProfileCount(), 16);
    EXPECT_EQ(List::lastListError().action, FileError::Action::List);
    EXPECT_FALSE(folderExists(joinPath(folder(), "missing")));
}

}  // namespace
}  // namespace melodex
