// The "profile" commands of the melodex program, run as a user runs them.

#include <sys/wait.h>

#include <cstdlib>

#include <gtest/gtest.h>

#include "melodex/foundation/file_system.h"
#include "melodex/foundation/text.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

struct Outcome {
    int exit = -1;
    String out;
    String err;
};

class ProfileCliTest : public ::testing::Test {
protected:
    // Runs `melodex --data <folder> <arguments>` in the test's folder.
    Outcome melodex(const String& arguments) const {
        const String command = "cd '" + m_folder.path() + "' && '" + MELODEX_CLI_PROGRAM +
                               "' --data data " + arguments + " >out.txt 2>err.txt";
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, m_folder.read("out.txt"),
                m_folder.read("err.txt")};
    }

    String profiles() const { return m_folder.file("data/Display Profiles"); }

    test::TempFolder m_folder;
};

TEST_F(ProfileCliTest, ListWritesTheBuiltInProfilesTheFirstTime) {
    const Outcome first = melodex("profile list");
    EXPECT_EQ(first.exit, 0) << first.err;
    EXPECT_EQ(first.err, "");
    const StringArray lines = split(strip(first.out), "\n");
    ASSERT_EQ(lines.size(), 18u);
    EXPECT_EQ(split(lines[0], " ", EmptyPieces::Skip),
              (StringArray{"NAME", "TITLE", "TARGETS", "FILE"}));
    EXPECT_EQ(split(lines[7], " ", EmptyPieces::Skip),
              (StringArray{"LargePrint", "Large", "Print", "print", "(not", "saved)"}));
    EXPECT_EQ(lines[17], "16 profiles in " + profiles());
    EXPECT_EQ(listFolder(profiles())->size(), 15u);

    // The next run reads the files: the printed Large Print profile is gone.
    const Outcome second = melodex("profile list");
    EXPECT_EQ(second.exit, 0);
    EXPECT_NE(second.out.find("15 profiles in "), String::npos);
    EXPECT_EQ(second.out.find("(not saved)"), String::npos);
}

TEST_F(ProfileCliTest, ShowPrintsFlagsStylesAndSpellings) {
    const Outcome chords = melodex("profile show Chords");
    EXPECT_EQ(chords.exit, 0) << chords.err;
    for (const char* line :
         {"Targets:       screen, print (3)\n",
          "Flags:         0xD8F33: words, chords, header, footer, multicolumns, "
          "variablecolumnwidths, key, wraplines, copyright, author, tempo, timesignature\n",
          "Chord             Arial            12    3     12   -       0       red\n",
          "8    Ab    0     0      C  Db D  Eb E  F  Gb G  Ab A  Bb B\n"}) {
        EXPECT_NE(chords.out.find(line), String::npos) << line << chords.out;
    }
    const Outcome guitar = melodex("profile show GuitarWithCapo --type screen");
    EXPECT_NE(guitar.out.find("5    F     3     0      "), String::npos) << guitar.out;
}

TEST_F(ProfileCliTest, LookupsByTypeAndTheirFailures) {
    // Only the run that makes the built-in profiles has the printed Large Print.
    EXPECT_NE(melodex("profile show LargePrint --type print").out.find("Targets:       print (2)"),
              String::npos);
    EXPECT_NE(melodex("profile show LargePrint --type 3").out.find("Targets:       screen (1)"),
              String::npos);
    const Outcome print = melodex("profile show LargePrint --type print");
    EXPECT_EQ(print.exit, 1);
    EXPECT_EQ(print.err,
              "melodex: the display profile \"LargePrint\" is not for print; \"melodex profile "
              "list\" shows every profile with its targets\n");
    const Outcome missing = melodex("profile show chords");
    EXPECT_EQ(missing.exit, 1);
    EXPECT_NE(missing.err.find("no display profile is named \"chords\""), String::npos);
    const Outcome badType = melodex("profile show Chords --type tv");
    EXPECT_EQ(badType.exit, 2);
    EXPECT_NE(badType.err.find("not \"tv\""), String::npos);
}

TEST_F(ProfileCliTest, ExportWritesTheProfileFile) {
    const Outcome out = melodex("profile export Chords -");
    EXPECT_EQ(out.exit, 0) << out.err;
    EXPECT_EQ(out.out, m_folder.read(profiles() + "/Chords.sdp"));
    EXPECT_TRUE(out.out.starts_with("<?xml version=\"1.0\"?>\n<profile"));

    EXPECT_EQ(melodex("profile export Bass bass.sdp").exit, 0);
    EXPECT_EQ(m_folder.read("bass.sdp"), m_folder.read(profiles() + "/Bass.sdp"));

    const Outcome nowhere = melodex("profile export Bass no/such/folder.sdp");
    EXPECT_EQ(nowhere.exit, 1);
    EXPECT_NE(nowhere.err.find("cannot write"), String::npos) << nowhere.err;
    EXPECT_EQ(melodex("profile export Bass").exit, 2);
}

TEST_F(ProfileCliTest, ABrokenProfileFileIsReportedAndLeftAlone) {
    m_folder.write("data/Display Profiles/Mine.sdp", "<profile><name>Mine");
    const Outcome run = melodex("profile list");
    EXPECT_EQ(run.exit, 0);
    EXPECT_TRUE(
        run.err.starts_with("melodex: warning: cannot read \"" + profiles() + "/Mine.sdp\""))
        << run.err;
    EXPECT_NE(run.out.find("16 profiles in "), String::npos);  // none loaded: the house ones
    EXPECT_EQ(m_folder.read(profiles() + "/Mine.sdp"), "<profile><name>Mine");
}

// Commands that only show songs take the profiles as the folder has them
// and write none: neither a missing data folder nor an empty profiles
// folder gets files.
TEST_F(ProfileCliTest, ShowingSongsWritesNoProfiles) {
    const String song = String(MELODEX_TEST_DATA_DIR) + "/cli/keys/in_a_flat.song";
    const Outcome shown = melodex("song show --profile Bass '" + song + "'");
    EXPECT_EQ(shown.exit, 0) << shown.err;
    EXPECT_EQ(shown.err, "");
    EXPECT_NE(shown.out.find("Ab             Db     Eb\n"), String::npos) << shown.out;
    EXPECT_FALSE(folderExists(m_folder.file("data")));

    ASSERT_TRUE(createFolders(profiles()));
    EXPECT_EQ(melodex("song show --profile LargePrint '" + song + "'").exit, 0);
    EXPECT_TRUE(listFolder(profiles())->empty());

    // A profile of the user's own is found; the house profiles are then not there.
    ASSERT_EQ(melodex("profile export Chords -").exit, 0);  // writes the house profiles
    m_folder.write("data/Display Profiles/Chords.sdp",
                   replaceAll(m_folder.read(profiles() + "/Chords.sdp"), "<name>Chords</name>",
                              "<name>Mine</name>"));
    EXPECT_EQ(melodex("song show -p Mine '" + song + "'").exit, 0);
    EXPECT_EQ(listFolder(profiles())->size(), 15u);
}

}  // namespace
}  // namespace melodex
