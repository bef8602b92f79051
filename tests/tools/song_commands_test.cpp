// The "melodex song" commands, run as the built program.

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdlib>

#include "melodex/foundation/text_encoding.h"
#include "melodex/song/song.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using test::TempFolder;

struct ProgramRun {
    int exitCode = -1;
    String out;
    String err;
};

String shellQuoted(std::string_view text) {
    return "'" + replaceAll(text, "'", "'\\''") + "'";
}

// Runs the program with `arguments`, collecting its output in `folder`.
ProgramRun melodex(const TempFolder& folder, std::initializer_list<std::string_view> arguments) {
#ifndef MELODEX_CLI_PROGRAM
    (void)folder;
    (void)arguments;
    return {};
#else
    String command = shellQuoted(MELODEX_CLI_PROGRAM);
    for (std::string_view argument : arguments)
        command += " " + shellQuoted(argument);
    command += " >" + shellQuoted(folder.file("out")) + " 2>" + shellQuoted(folder.file("err"));
    const int status = std::system(command.c_str());
    ProgramRun run;
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.out = folder.read("out");
    run.err = folder.read("err");
    return run;
#endif
}

class SongCommandsTest : public ::testing::Test {
protected:
    void SetUp() override {
#ifndef MELODEX_CLI_PROGRAM
        GTEST_SKIP() << "MELODEX_CLI_PROGRAM is not defined for this test program";
#endif
    }

    TempFolder m_folder;
};

TEST_F(SongCommandsTest, ShowPrintsTheChordSheetTransposedOnRequest) {
    const String path = m_folder.write(
        "grace.song",
        "<song><info><title>Amazing Grace</title><key>G</key></info>"
        "<block type='Chorus'><line>A<chord>G</chord>mazing gr<chord>C/G</chord>áce</line>"
        "</block></song>");
    ProgramRun run = melodex(m_folder, {"song", "show", path});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out,
              "Title: Amazing Grace\nKey: G\n\n[C1] Chorus\n G        C/G\nAmazing gráce\n");
    EXPECT_EQ(run.err, "");

    run = melodex(m_folder, {"song", "show", "--transpose", "-2", path});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out,
              "Title: Amazing Grace\nKey: F\n\n[C1] Chorus\n F        Bb/F\nAmazing gráce\n");

    run = melodex(m_folder, {"song", "show", test::testDataPath("opensong/joy_to_the_world")});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NE(run.out.find("D          A\nJoy to the world!\n"), String::npos) << run.out;
}

TEST_F(SongCommandsTest, ConvertWritesTheTypeOfTheOptionOrTheExtension) {
    const String source =
        m_folder.write("in.song",
                       "<song><uuid>u-1</uuid><updated>20240131174502</updated>"
                       "<block><line>Hal<chord>D</chord>lelujah</line></block></song>");
    struct Case {
        const char* output;
        const char* type;  // null: none given
        int expectedType;
    };
    const Case cases[] = {
        {"out.txt", nullptr, SongFileType::Text},  {"out.SNG", nullptr, SongFileType::Sng},
        {"out.song", nullptr, SongFileType::Song}, {"out.xml", nullptr, SongFileType::Song},
        {"out.dat", "txt", SongFileType::Text},    {"out.txt", "SONG", SongFileType::Song},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(String(c.output) + " " + (c.type ? c.type : "-"));
        const String output = m_folder.file(c.output);
        ProgramRun run =
            c.type ? melodex(m_folder, {"song", "convert", source, output, "--type", c.type})
                   : melodex(m_folder, {"song", "convert", source, output});
        ASSERT_EQ(run.exitCode, 0) << run.err;
        Song song;
        song.info().clear();
        song.uuid("u-1");
        song.updated(LocalTime(2024, 1, 31, 17, 45, 2));
        auto* section = new SongSection;
        auto* line = new SongLine;
        line->setText("Hallelujah");
        line->addChord(SongChord("D", 3));
        section->addLine(line);
        song.addSection(section);
        song.generateSectionIDs();
        String expected = song.saveToText(c.expectedType, true);
        if (c.expectedType != SongFileType::Song) expected = replaceAll(expected, "\n", "\r\n");
        if (c.expectedType == SongFileType::Sng) expected = encodeUtf16LE(expected, true);
        EXPECT_EQ(m_folder.read(output), expected);
    }
}

TEST_F(SongCommandsTest, FailuresExitWithOneAndUsageErrorsWithTwo) {
    ProgramRun run = melodex(m_folder, {"song", "show", m_folder.file("missing.song")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "melodex: cannot read " + m_folder.file("missing.song") +
                           ": No such file or directory\n");

    const String source = m_folder.write("in.txt", "Amazing grace\n");
    run = melodex(m_folder, {"song", "convert", source, m_folder.file("no/folder/out.song")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.err.find("melodex: cannot write "), String::npos) << run.err;

    for (std::initializer_list<std::string_view> usage :
         {std::initializer_list<std::string_view>{"song"},
          {"song", "show"},
          {"song", "show", source, "--transpose", "many"},
          {"song", "show", source, "--transpose", "13"},
          {"song", "convert", source},
          {"song", "convert", source, "out", "--type", "pdf"},
          {"song", "sing"}}) {
        run = melodex(m_folder, usage);
        EXPECT_EQ(run.exitCode, 2) << run.err;
        EXPECT_NE(run.err, "");
    }
    run = melodex(m_folder, {"song", "show", "--help"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_NE(run.out.find("--transpose"), String::npos);
}

}  // namespace
}  // namespace melodex
