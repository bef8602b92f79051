#include "melodex/foundation/file_system.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <set>
#include <string>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "melodex/foundation/status.h"
#include "support/temp_folder.h"
#include "support/unprivileged.h"

namespace melodex {
namespace {

using namespace std::string_literals;

// The names in a folder, folders marked with "/".
StringArray namesIn(const String& folder) {
    const auto items = listFolder(folder);
    StringArray names;
    for (const FolderItem& item : items.value_or(std::vector<FolderItem>{{"(not listed)"}}))
        names.push_back(item.name + (item.isFolder ? "/" : item.isFile ? "" : "?"));
    return names;
}

mode_t modeOf(const String& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 ? info.st_mode & 07777 : 0;
}

TEST(FileSystemTest, JoinsTakesApartAndRelatesPaths) {
    // path -> file name | base name | extension | folder
    // clang-format off
    const std::pair<const char*, const char*> parts[] = {
        {"Amazing Grace.song", "Amazing Grace.song|Amazing Grace|.song|"},
        {"/songs/.hidden", ".hidden|.hidden||/songs"},
        {"/songs/.hidden.song", ".hidden.song|.hidden|.song|/songs"},
        {"/so.ngs/readme", "readme|readme||/so.ngs"},
        {"/songs/archive.tar.gz", "archive.tar.gz|archive.tar|.gz|/songs"},
        {"/songs/", "|||/songs"}, {"/a.song", "a.song|a|.song|/"}, {"/", "|||/"}, {"", "|||"},
        {"/Lieder/J\u00e9sus.Song", "J\u00e9sus.Song|J\u00e9sus|.Song|/Lieder"}};
    // Without two absolute paths there is no relative form.
    const std::array<const char*, 3> relative[] = {
        {"/data/sets/Easter.set", "/data/songs", "../sets/Easter.set"},
        {"/data/songs/a.song", "/data/songs/", "a.song"},
        {"/x/./y/../songs/a.song", "/x", "songs/a.song"}, {"/a.song", "/data/songs", "../../a.song"},
        {"songs/a.song", "/data", "songs/a.song"}, {"/data/a.song", "data", "/data/a.song"}};
    // clang-format on
    for (const auto& [path, expected] : parts) {
        EXPECT_EQ(fileNameOf(path) + "|" + baseNameOf(path) + "|" + extensionOf(path) + "|" +
                      folderOf(path),
                  expected);
    }
    for (const auto& [path, base, expected] : relative)
        EXPECT_EQ(relativePath(path, base), expected) << path << " from " << base;
    EXPECT_EQ(joinPath("/songs/", "a") + joinPath("/", "a") + joinPath("", "a"), "/songs/a/aa");
    EXPECT_EQ(joinPath("/songs", "") + joinPath("/songs", "/other/a"), "/songs/other/a");
    for (const char* name : {"a.song", ".hidden", "...", "a..b", "J\u00e9sus.song"})
        EXPECT_TRUE(isPlainFileName(name)) << name;
    for (const String& name : {""s, "."s, ".."s, "a/b"s, "/a"s, "a/"s, "a\\b"s, "..\\a"s, "a\0b"s})
        EXPECT_FALSE(isPlainFileName(name)) << '"' << name << '"';
}

TEST(FileSystemTest, ManagesFilesFoldersAndLinks) {
    test::TempFolder folder;
    for (const char* name : {"b.song", "a.song", "A.song", ".hidden", "\u00e9.song", "c/in.song"})
        folder.write(name, "x");
    const String file = folder.file("a.song"), deep = folder.file("d/b/\u00e9");
    ASSERT_EQ(::symlink("a.song", folder.file("link.song").c_str()), 0);
    ASSERT_EQ(::symlink("c", folder.file("link").c_str()), 0);
    // Sorted by byte; links followed.
    EXPECT_EQ(namesIn(folder.path()), (StringArray{".hidden", "A.song", "a.song", "b.song", "c/",
                                                   "link/", "link.song", "\u00e9.song"}));
    EXPECT_TRUE(fileExists(file) && !folderExists(file) && folderExists(folder.file("link")));
    EXPECT_FALSE(fileExists("") || folderExists("") || fileExists(folder.path()));
    EXPECT_FALSE(listFolder(file) || listFolder(folder.file("missing")));
    EXPECT_TRUE(createFolders(deep) && createFolders(deep) && namesIn(deep).empty());
    EXPECT_FALSE(createFolders(file + "/sub") || createFolders(file));
    // The reason a folder cannot be made is the system's, whichever step failed.
    Status why = StatusSuccess;
    EXPECT_FALSE(createFolders(file + "/sub/deeper", &why));
    EXPECT_EQ(why, Status(ENOTDIR));
    why = StatusSuccess;
    EXPECT_FALSE(createFolders(file, &why));
    EXPECT_EQ(why, Status(ENOTDIR));
    // Removing a link removes the link, not what it points at; folders are not removed.
    EXPECT_EQ(removeFile(folder.file("link.song")), StatusSuccess);
    EXPECT_TRUE(fileExists(file) && removeFile(file) == StatusSuccess && !fileExists(file));
    EXPECT_EQ(removeFile(file), Status(ENOENT));
    EXPECT_TRUE(removeFile(deep) != StatusSuccess && folderExists(deep));
    // Modification times at whole seconds: truncated, never rounded up.
    const timespec times[2] = {{1700000000, 999999999}, {1700000000, 999999999}};
    ASSERT_EQ(::utimensat(AT_FDCWD, folder.file("b.song").c_str(), times, 0), 0);
    EXPECT_EQ(fileModificationTime(folder.file("b.song")), LocalTime::fromTimeT(1700000000));
    EXPECT_FALSE(fileModificationTime(file).has_value());
    const std::string bytes = std::string(200000, '\xFE') + "\0\r\n"s;
    std::string read;
    ASSERT_EQ(readFileBytes(folder.write("big.bin", bytes), read), StatusSuccess);
    EXPECT_EQ(read, bytes);
    ASSERT_EQ(readFileBytes(folder.write("empty.bin", ""), read), StatusSuccess);
    EXPECT_EQ(read, "");
    EXPECT_EQ(readFileBytes(file, read), Status(ENOENT));
    EXPECT_EQ(readFileBytes(folder.file("b.song/inside"), read), Status(ENOTDIR));
}

TEST(FileSystemTest, WritesFilesAtomicallyOrNotAtAll) {
    test::TempFolder folder;
    const String path = folder.file("a.song"), kept = folder.write("sub/kept.song", "kept");
    // A new file is readable by others like any file a program creates, not
    // private as the temporary file it started as; a replaced one keeps its mode.
    const mode_t savedMask = ::umask(022);
    const Status created = writeFileAtomically(path, "first");
    ::umask(savedMask);
    ASSERT_EQ(created, StatusSuccess);
    EXPECT_EQ(modeOf(path), mode_t(0644));
    ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
    ASSERT_EQ(writeFileAtomically(path, "\0\r\n\xFF"s), StatusSuccess);
    EXPECT_EQ(folder.read(path), "\0\r\n\xFF"s);
    EXPECT_EQ(modeOf(path), mode_t(0640));
    // Failures leave everything as it was: a missing folder, a folder in the
    // way of the target, a file in the way of the folder, a read-only folder.
    EXPECT_EQ(writeFileAtomically(folder.file("missing/a.song"), "x"), Status(ENOENT));
    EXPECT_NE(writeFileAtomically(folder.file("sub"), "x"), StatusSuccess);
    EXPECT_EQ(writeFileAtomically(path + "/b.song", "x"), Status(ENOTDIR));
    ASSERT_EQ(::chmod(kept.c_str(), 0600), 0);
    if (::geteuid() != 0) {  // permissions do not bind the super-user
        ASSERT_EQ(::chmod(folder.file("sub").c_str(), 0555), 0);
        EXPECT_EQ(writeFileAtomically(kept, "new"), Status(EACCES));
        ::chmod(folder.file("sub").c_str(), 0755);
    }
    // And a write that fails half-way: the file size limit is hit.
    rlimit saved{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &saved), 0);
    ASSERT_TRUE(saved.rlim_max == RLIM_INFINITY || saved.rlim_max >= 4096);
    const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limited = saved;
    limited.rlim_cur = 1024;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limited), 0);
    const Status tooBig = writeFileAtomically(kept, std::string(64 * 1024, 'x'));
    ::setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previousHandler);
    EXPECT_EQ(tooBig, Status(EFBIG));
    EXPECT_EQ(folder.read(kept), "kept");
    EXPECT_EQ(modeOf(kept), mode_t(0600));
    // No temporary file is left behind.
    EXPECT_EQ(namesIn(folder.path()), (StringArray{"a.song", "sub/"}));
    EXPECT_EQ(namesIn(folder.file("sub")), StringArray{"kept.song"});
}

TEST(FileSystemTest, ReplacesWhatLinksPointAtAndNothingButRegularFiles) {
    test::TempFolder folder;
    const String target = folder.write("songs/target.song", "old");
    ASSERT_EQ(::chmod(target.c_str(), 0604), 0);
    // A chain of links, relative and absolute: the final file is replaced,
    // every link stays a link, and the file keeps its mode.
    ASSERT_EQ(::symlink("songs/target.song", folder.file("link.song").c_str()), 0);
    ASSERT_EQ(::symlink(folder.file("link.song").c_str(), folder.file("link2.song").c_str()), 0);
    ASSERT_EQ(writeFileAtomically(folder.file("link2.song"), "new"), StatusSuccess);
    EXPECT_EQ(folder.read(target), "new");
    struct stat info {};
    for (const char* link : {"link.song", "link2.song"}) {
        ASSERT_EQ(::lstat(folder.file(link).c_str(), &info), 0);
        EXPECT_TRUE(S_ISLNK(info.st_mode)) << link;
    }
    EXPECT_EQ(modeOf(target), mode_t(0604));
    // A dangling link gets its target made; a loop of links is refused.
    ASSERT_EQ(::symlink("made.song", folder.file("dangling.song").c_str()), 0);
    ASSERT_EQ(writeFileAtomically(folder.file("dangling.song"), "made"), StatusSuccess);
    EXPECT_EQ(folder.read("made.song"), "made");
    ASSERT_EQ(::symlink("loop.song", folder.file("loop.song").c_str()), 0);
    EXPECT_EQ(writeFileAtomically(folder.file("loop.song"), "x"), Status(ELOOP));

    // A FIFO, a folder and a link to a folder are never replaced.
    const String fifo = folder.file("pipe");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    ASSERT_EQ(::symlink("songs", folder.file("to-folder").c_str()), 0);
    for (const String& path : {fifo, folder.file("songs"), folder.file("to-folder")})
        EXPECT_EQ(writeFileAtomically(path, "x"), StatusNotRegularFile) << path;
    ASSERT_EQ(::lstat(fifo.c_str(), &info), 0);
    EXPECT_TRUE(S_ISFIFO(info.st_mode));
    EXPECT_EQ(namesIn(folder.file("songs")), StringArray{"target.song"});

    // A hard-linked file is replaced under the name written; its other name
    // keeps the old contents.
    ASSERT_EQ(::link(target.c_str(), folder.file("hard.song").c_str()), 0);
    ASSERT_EQ(writeFileAtomically(target, "newer"), StatusSuccess);
    EXPECT_EQ(folder.read("hard.song"), "new");

    // Creating refuses a name that is taken, even by a link.
    EXPECT_EQ(writeFileAtomically(target, "x", WriteMode::CreateNew), Status(EEXIST));
    EXPECT_EQ(writeFileAtomically(folder.file("link.song"), "x", WriteMode::CreateNew),
              Status(EEXIST));
    EXPECT_EQ(folder.read(target), "newer");
    ASSERT_EQ(writeFileAtomically(folder.file("fresh.song"), "x", WriteMode::CreateNew),
              StatusSuccess);
    EXPECT_EQ(folder.read("fresh.song"), "x");
}

TEST(FileSystemTest, KeepsTheOwnerAndRefusesAReadOnlyFolder) {
    test::TempFolder folder;
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
    const String readOnly = folder.file("read-only"),
                 kept = folder.write("read-only/kept.song", "kept");
    ASSERT_EQ(::chmod(readOnly.c_str(), 0555), 0);
    const int result = test::asUnprivileged([&] {
        const Status status = writeFileAtomically(kept, "changed");
        return status == Status(EACCES) ? 0 : 1;
    });
    EXPECT_EQ(result, 0) << "a read-only folder refuses the write";
    EXPECT_EQ(folder.read(kept), "kept");
    EXPECT_EQ(namesIn(readOnly), StringArray{"kept.song"}) << "no temporary file left";

    // The super-user writing another user's file leaves it that user's.
    if (::geteuid() == 0) {
        const String theirs = folder.write("theirs.song", "theirs");
        ASSERT_EQ(::chown(theirs.c_str(), 65534, 65534), 0);
        ASSERT_EQ(writeFileAtomically(theirs, "edited"), StatusSuccess);
        struct stat info {};
        ASSERT_EQ(::stat(theirs.c_str(), &info), 0);
        EXPECT_EQ(info.st_uid, uid_t(65534));
        EXPECT_EQ(info.st_gid, gid_t(65534));
    }
}

TEST(FileSystemTest, WalksFoldersOnceAndReportsWhatItCannotRead) {
    test::TempFolder folder;
    folder.write("top/a.song", "");
    folder.write("top/.hidden/b.song", "");
    folder.write("top/deep/er/c.song", "");
    ASSERT_EQ(::symlink(folder.file("top/deep").c_str(), folder.file("top/again").c_str()), 0);
    StringArray files, unreadable;
    FolderWalk walk;
    walk.skipHidden = true;
    walk.file = [&](const String& path, const String&) {
        files.push_back(relativePath(path, folder.path()));
    };
    walk.unreadable = [&](const String& path, Status) { unreadable.push_back(path); };
    std::set<String> visited;
    walkFolder(folder.file("top"), walk, visited);
    walkFolder(folder.file("top/deep"), walk, visited);  // walked already
    EXPECT_EQ(files, (StringArray{"top/a.song", "top/again/er/c.song"}));
    walkFolder(folder.file("missing"), walk, visited);
    EXPECT_EQ(unreadable, StringArray{folder.file("missing")});

    String bytes = "before";
    EXPECT_EQ(readFileBytes(folder.write("big", std::string(100, 'x')), bytes, 99), Status(EFBIG));
    EXPECT_EQ(bytes, "before");
    EXPECT_EQ(readFileBytes(folder.file("big"), bytes, 100), StatusSuccess);
    EXPECT_EQ(bytes.size(), 100u);
}

TEST(FileSystemTest, MakesFileNamesFromTitles) {
    const std::pair<const char*, const char*> rows[] = {
        {"Amazing Grace", "Amazing Grace"},
        {"Joy/Sorrow: \"Why?\"", "Joy-Sorrow- Why"},
        {"..\\..\\etc", "-..-etc"},
        {"...And Can It Be.", "And Can It Be"},
        {" \t.hidden", "hidden"},
        {"Tab\tand\x7f bell\a", "Taband bell"},
        {"..", ""},
        {"?*<>|", ""},
    };
    for (const auto& [title, name] : rows)
        EXPECT_EQ(fileNameFromTitle(title), name) << title;
    // Cut to 200 bytes on a character boundary.
    const String long_ = fileNameFromTitle(String(199, 'a') + "éé");
    EXPECT_EQ(long_, String(199, 'a'));
}

TEST(FileSystemTest, DescribesStatuses) {
    EXPECT_EQ(statusMessage(Status(ENOENT)), std::strerror(ENOENT));
    FileError error;
    EXPECT_FALSE(error);
    EXPECT_EQ(error.message(), "");
    error.record(FileError::Action::Write, "/a", StatusSuccess);
    EXPECT_FALSE(error) << "a success is not a failure";
    error.record(FileError::Action::Write, "/data/songdb-PC.ini", Status(EACCES));
    error.record(FileError::Action::Remove, "/b", Status(ENOENT));
    EXPECT_EQ(error.message(),
              "cannot write \"/data/songdb-PC.ini\": " + String(std::strerror(EACCES)))
        << "the first failure is kept";
    const String xml = statusMessage(StatusXmlBase + 1), failed = statusMessage(StatusFailed);
    EXPECT_FALSE(xml.empty() || failed.empty() || statusMessage(0xDEADBEEF).empty());
    EXPECT_TRUE(xml != failed && xml != statusMessage(StatusXmlBase + 2));
}

}  // namespace
}  // namespace melodex
