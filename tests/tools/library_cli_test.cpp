// The library commands as users meet them when things go wrong or when
// several programs share one library: real processes, real files.

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <set>

#include <gtest/gtest.h>

#include "melodex/foundation/file_system.h"
#include "melodex/foundation/ini_file.h"
#include "melodex/platform/system_info.h"
#include "melodex/song/song.h"
#include "support/temp_folder.h"
#include "support/unprivileged.h"

namespace melodex {
namespace {

namespace fs = std::filesystem;

struct Outcome {
    int exit = -1;
    String output;  // standard output and error together
};

class LibraryCliTest : public ::testing::Test {
protected:
    LibraryCliTest() {
        // Open to the unprivileged user, who writes its output beside.
        ::chmod(m_folder.path().c_str(), 0755);
        ::mkdir(m_folder.file("output").c_str(), 0777);
        ::chmod(m_folder.file("output").c_str(), 0777);
    }

    // Runs "melodex <arguments>" in the temporary folder.
    Outcome melodex(const String& arguments, bool unprivileged = false) const {
        const String output = m_folder.file("output/" + std::to_string(++m_runs));
        const String command = "cd '" + m_folder.path() + "' && '" + MELODEX_CLI_PROGRAM + "' " +
                               arguments + " >'" + output + "' 2>&1";
        const auto run = [&command] {
            const int status = std::system(command.c_str());
            return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        };
        Outcome result;
        result.exit = unprivileged ? test::asUnprivileged(run) : run();
        result.output = m_folder.read(output);
        return result;
    }

    // Starts "melodex <arguments>" without waiting; its process id.
    pid_t start(const String& arguments) const {
        const String command = "cd '" + m_folder.path() + "' && exec '" + MELODEX_CLI_PROGRAM +
                               "' " + arguments + " >/dev/null 2>&1";
        const pid_t child = ::fork();
        if (child == 0) {
            ::execl("/bin/sh", "sh", "-c", command.c_str(), static_cast<char*>(nullptr));
            ::_exit(127);
        }
        return child;
    }

    static int wait(pid_t child) {
        int status = 0;
        ::waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    // `count` songs in `folder`: two of three as .song files with uuids
    // "<prefix>-<n>", the others as OpenSong files, which carry no uuid.
    void writeSongs(const String& folder, const String& prefix, int count) const {
        for (int n = 1; n <= count; ++n) {
            const String title = prefix + " hymn " + std::to_string(n);
            const String line = "Verse " + std::to_string(n) + " of " + prefix;
            if (n % 3 == 0) {
                m_folder.write(folder + "/" + title, "<song><title>" + title +
                                                         "</title><lyrics>[V1]\n " + line +
                                                         "</lyrics></song>");
            } else {
                m_folder.write(folder + "/" + title + ".song",
                               "<song><uuid>" + prefix + "-" + std::to_string(n) +
                                   "</uuid><info><title>" + title + "</title></info><block><line>" +
                                   line + "</line></block></song>");
            }
        }
    }

    // What the library in `data` holds on disk: the uuids of its song files
    // (each file once) and the sections of its index.
    struct Library {
        std::multiset<String> uuids;
        std::set<String> sections;
        int files = 0;
    };
    Library libraryIn(const String& data) const {
        Library library;
        const String songs = m_folder.file(data + "/Song Database/Song Files");
        for (const FolderItem& item : listFolder(songs).value_or(std::vector<FolderItem>{})) {
            if (!item.isFile || !item.name.ends_with(".song")) continue;
            Song song;
            EXPECT_EQ(song.loadFromFile(joinPath(songs, item.name)), StatusSuccess);
            library.uuids.insert(song.uuid());
            ++library.files;
        }
        IniFile index;
        const String indexPath =
            m_folder.file(data + "/Song Database/songdb-" + SystemInfo::hostName() + ".ini");
        EXPECT_EQ(index.load(indexPath), StatusSuccess);
        for (int i = 0; i < index.getKeyCount(); ++i)
            library.sections.insert(index.getKey(i)->name());
        return library;
    }

    test::TempFolder m_folder;
    mutable int m_runs = 0;
};

TEST_F(LibraryCliTest, ImportsStartedTogetherEndWithEachSongOnce) {
    writeSongs("first", "first", 300);
    writeSongs("second", "second", 150);
    struct Case {
        int processes;
        bool twoFolders;
        int songs;
    };
    for (const Case& test : {Case{2, false, 300}, Case{4, false, 300}, Case{2, true, 450}}) {
        SCOPED_TRACE(std::to_string(test.processes) + " processes");
        const String data = "data-" + std::to_string(test.processes) + (test.twoFolders ? "x" : "");
        std::vector<pid_t> children;
        for (int p = 0; p < test.processes; ++p) {
            const String source = test.twoFolders && p % 2 == 1 ? "second" : "first";
            children.push_back(start("--data " + data + " library import " + source));
        }
        for (pid_t child : children)
            EXPECT_EQ(wait(child), 0);

        const Library library = libraryIn(data);
        EXPECT_EQ(library.files, test.songs);
        EXPECT_EQ(int(library.sections.size()), test.songs) << "the index lists every song";
        std::set<String> distinct(library.uuids.begin(), library.uuids.end());
        EXPECT_EQ(distinct.size(), library.uuids.size()) << "no song twice";
        for (const String& uuid : distinct)
            EXPECT_TRUE(library.sections.contains(uuid)) << uuid;
        // Every source's own uuid is the library's uuid of that song.
        for (int n = 1; n <= 300; ++n) {
            if (n % 3 != 0) {
                EXPECT_TRUE(distinct.contains("first-" + std::to_string(n))) << n;
            }
        }
    }
}

TEST_F(LibraryCliTest, FailuresNameThePathAndTheReasonAndExitWithOne) {
    m_folder.write("songs/Hymn.song",
                   "<song><uuid>hymn-1</uuid><info><title>Hymn</title></info></song>");
    m_folder.write("songs/Locked.song", "<song><info><title>Locked</title></info></song>");
    ASSERT_EQ(::chmod(m_folder.file("songs/Locked.song").c_str(), 0600), 0);
    ASSERT_EQ(::mkdir(m_folder.file("songs/Closed").c_str(), 0700), 0);
    const String denied = statusMessage(Status(EACCES));

    // The data folder belongs to the user; the songs they cannot read are
    // named with the reason, and the readable song still comes in.
    ASSERT_EQ(::mkdir(m_folder.file("data").c_str(), 0755), 0);
    ASSERT_EQ(::chown(m_folder.file("data").c_str(), test::UnprivilegedId, test::UnprivilegedId),
              0);
    Outcome run = melodex("--data data library import songs", true);
    EXPECT_EQ(run.exit, 1);
    EXPECT_NE(run.output.find("songs/Locked.song: cannot read: " + denied), String::npos)
        << run.output;
    EXPECT_NE(run.output.find("songs/Closed: cannot read: " + denied), String::npos) << run.output;
    EXPECT_NE(run.output.find("Imported 1 song;"), String::npos) << run.output;

    // A library whose song files the user may not delete: the removal says
    // so and the song stays.
    const String songFiles = m_folder.file("data/Song Database/Song Files");
    ASSERT_EQ(::chown(songFiles.c_str(), 0, 0), 0);
    ASSERT_EQ(::chmod(songFiles.c_str(), 0755), 0);
    run = melodex("--data data library remove hymn-1", true);
    EXPECT_EQ(run.exit, 1);
    EXPECT_EQ(run.output,
              "melodex: cannot remove \"" + songFiles + "/Hymn.song\": " + denied + "\n");
    EXPECT_TRUE(fileExists(songFiles + "/Hymn.song"));

    // A library that is wholly someone else's: no change can even begin,
    // and the message says which file stood in the way.
    const String lock = m_folder.file("data/Song Database/songdb.lock");
    ASSERT_EQ(::chown(lock.c_str(), 0, 0), 0);
    ASSERT_EQ(::chmod(lock.c_str(), 0644), 0);
    run = melodex("--data data library remove hymn-1", true);
    EXPECT_EQ(run.exit, 1);
    EXPECT_EQ(run.output, "melodex: cannot lock \"" + lock + "\": " + denied + "\n");
    ASSERT_EQ(::chown(lock.c_str(), test::UnprivilegedId, test::UnprivilegedId), 0);

    // An index that cannot be written is a failure, not "Imported".
    const String index =
        m_folder.file("data/Song Database/songdb-" + SystemInfo::hostName() + ".ini");
    ASSERT_EQ(::unlink(index.c_str()), 0);
    ASSERT_EQ(::mkdir(index.c_str(), 0755), 0);
    m_folder.write("more/New.song", "<song><info><title>New</title></info></song>");
    run = melodex("--data data library import more");
    EXPECT_EQ(run.exit, 1);
    EXPECT_NE(
        run.output.find("cannot write \"" + index + "\": " + statusMessage(StatusNotRegularFile)),
        String::npos)
        << run.output;
}

TEST_F(LibraryCliTest, LookingCreatesNothing) {
    for (const char* command : {"library list", "library search grace", "library show x"}) {
        const Outcome run = melodex(String("--data nowhere ") + command);
        EXPECT_EQ(run.exit, 1) << command;
        EXPECT_EQ(run.output, "melodex: no library at " + m_folder.file("nowhere") + "\n");
    }
    EXPECT_FALSE(fs::exists(m_folder.file("nowhere")));

    m_folder.write("songs/Grace.song", "<song><info><title>Grace</title></info></song>");
    ASSERT_EQ(melodex("--data data library import songs").exit, 0);
    const auto listing = [this] {
        String names;
        for (const auto& entry : fs::recursive_directory_iterator(m_folder.file("data")))
            names += entry.path().string() + " " +
                     std::to_string(fs::last_write_time(entry).time_since_epoch().count()) + "\n";
        return names;
    };
    const String before = listing();
    EXPECT_EQ(melodex("--data data library list").exit, 0);
    EXPECT_EQ(melodex("--data data library show Grace").exit, 0);
    EXPECT_EQ(melodex("--data data library search nothing-like-it").exit, 1);
    EXPECT_EQ(listing(), before);
}

}  // namespace
}  // namespace melodex
