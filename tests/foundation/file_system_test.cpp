#include "melodex/foundation/file_system.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <iterator>
#include <set>
#include <string>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "melodex/foundation/status.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using namespace std::string_literals;
using test::TempFolder;

StringArray namesIn(const String& folder) {
    StringArray names;
    for (const FolderItem& item : listFolder(folder).value_or(std::vector<FolderItem>{}))
        names.push_back(item.name);
    return names;
}

mode_t modeOf(const String& path) {
    struct stat info {};
    EXPECT_EQ(::stat(path.c_str(), &info), 0) << path;
    return info.st_mode & 07777;
}

TEST(FileSystemTest, JoinsPaths) {
    EXPECT_EQ(joinPath("/songs", "a.song"), "/songs/a.song");
    EXPECT_EQ(joinPath("/songs/", "a.song"), "/songs/a.song");
    EXPECT_EQ(joinPath("/", "a.song"), "/a.song");
    EXPECT_EQ(joinPath("", "a.song"), "a.song");
    EXPECT_EQ(joinPath("/songs", ""), "/songs");
    EXPECT_EQ(joinPath("/songs", "/other/a.song"), "/other/a.song");
}

TEST(FileSystemTest, TakesPathsApart) {
    struct Case {
        const char* path;
        const char* fileName;
        const char* baseName;
        const char* extension;
        const char* folder;
    };
    const Case cases[] = {
        {"/songs/Amazing Grace.song", "Amazing Grace.song", "Amazing Grace", ".song", "/songs"},
        {"Amazing Grace.song", "Amazing Grace.song", "Amazing Grace", ".song", ""},
        {"/songs/.hidden", ".hidden", ".hidden", "", "/songs"},
        {"/songs/.hidden.song", ".hidden.song", ".hidden", ".song", "/songs"},
        {"/songs/README", "README", "README", "", "/songs"},
        {"/so.ngs/readme", "readme", "readme", "", "/so.ngs"},  // a dot in the folder
        {"/songs/archive.tar.gz", "archive.tar.gz", "archive.tar", ".gz", "/songs"},
        {"/songs/", "", "", "", "/songs"},
        {"/a.song", "a.song", "a", ".song", "/"},
        {"/", "", "", "", "/"},
        {"", "", "", "", ""},
        {"/Lieder/J\u00e9sus.Song", "J\u00e9sus.Song", "J\u00e9sus", ".Song", "/Lieder"},
        {"sets/Easter.set", "Easter.set", "Easter", ".set", "sets"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(fileNameOf(c.path), c.fileName);
        EXPECT_EQ(baseNameOf(c.path), c.baseName);
        EXPECT_EQ(extensionOf(c.path), c.extension);
        EXPECT_EQ(folderOf(c.path), c.folder);
    }
}

TEST(FileSystemTest, WritesPathsRelativeToAFolder) {
    EXPECT_EQ(relativePath("/data/sets/Easter.set", "/data/songs"), "../sets/Easter.set");
    EXPECT_EQ(relativePath("/data/songs/a.song", "/data/songs"), "a.song");
    EXPECT_EQ(relativePath("/data/songs/a.song", "/data/songs/"), "a.song");
    EXPECT_EQ(relativePath("/data/songs/sub/a.song", "/data"), "songs/sub/a.song");
    EXPECT_EQ(relativePath("/x/./y/../a.song", "/x"), "a.song");
    EXPECT_EQ(relativePath("/a.song", "/data/songs"), "../../a.song");
    // Without two absolute paths there is no relative form.
    EXPECT_EQ(relativePath("songs/a.song", "/data"), "songs/a.song");
    EXPECT_EQ(relativePath("/data/a.song", "data"), "/data/a.song");
}

TEST(FileSystemTest, AcceptsOnlyPlainFileNames) {
    for (const char* name :
         {"a.song", "Amazing Grace.song", ".hidden", "...", "a..b", "J\u00e9sus.song"}) {
        EXPECT_TRUE(isPlainFileName(name)) << name;
    }
    for (const char* name : {"", ".", "..", "a/b", "/a", "a/", "../a", "a\\b", "..\\a", "\\"}) {
        EXPECT_FALSE(isPlainFileName(name)) << '"' << name << '"';
    }
    EXPECT_FALSE(isPlainFileName("a\0b"s));
}

TEST(FileSystemTest, TellsFilesFromFoldersAndManagesThem) {
    TempFolder folder;
    const String file = folder.write("a.song", "x");
    EXPECT_TRUE(fileExists(file) && !folderExists(file));
    EXPECT_TRUE(folderExists(folder.path()) && !fileExists(folder.path()));
    EXPECT_FALSE(fileExists("") || folderExists(""));
    // Links are followed.
    ASSERT_EQ(::symlink(file.c_str(), folder.file("link.song").c_str()), 0);
    ASSERT_EQ(::symlink(folder.path().c_str(), folder.file("link").c_str()), 0);
    EXPECT_TRUE(fileExists(folder.file("link.song")));
    EXPECT_TRUE(folderExists(folder.file("link")));

    const String deep = folder.file("a/b/\u00e9/c");
    EXPECT_TRUE(createFolders(deep) && folderExists(deep));
    EXPECT_TRUE(createFolders(deep));  // already there
    EXPECT_FALSE(createFolders(joinPath(file, "sub")));
    EXPECT_FALSE(createFolders(file));

    // Removing a link removes the link, not what it points at.
    EXPECT_EQ(removeFile(folder.file("link.song")), StatusSuccess);
    EXPECT_TRUE(fileExists(file));
    EXPECT_EQ(removeFile(file), StatusSuccess);
    EXPECT_FALSE(fileExists(file));
    EXPECT_EQ(removeFile(file), Status(ENOENT));
    EXPECT_NE(removeFile(deep), StatusSuccess);
    EXPECT_TRUE(folderExists(deep));
}

TEST(FileSystemTest, ReadsModificationTimesAtWholeSeconds) {
    TempFolder folder;
    const String file = folder.write("a.song", "x");
    const std::time_t stamp = 1700000000;
    const timespec times[2] = {{stamp, 999999999}, {stamp, 999999999}};
    ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    const std::optional<LocalTime> modified = fileModificationTime(file);
    ASSERT_TRUE(modified.has_value());
    EXPECT_EQ(*modified, LocalTime::fromTimeT(stamp));  // not rounded up to the next second
    EXPECT_EQ(modified->toTimeT(), stamp);

    EXPECT_FALSE(fileModificationTime(folder.file("missing")).has_value());
}

TEST(FileSystemTest, ListsFoldersSortedByName) {
    TempFolder folder;
    folder.write("b.song", "x");
    folder.write("a.song", "x");
    folder.write("A.song", "x");
    folder.write(".hidden", "x");
    folder.write("\u00e9.song", "x");
    folder.write("c/inside.song", "x");
    ASSERT_EQ(::symlink("a.song", folder.file("link.song").c_str()), 0);

    const auto items = listFolder(folder.path());
    ASSERT_TRUE(items.has_value());
    ASSERT_EQ(items->size(), 7u);
    const StringArray expected = {".hidden", "A.song",    "a.song",     "b.song",
                                  "c",       "link.song", "\u00e9.song"};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const FolderItem& item = (*items)[i];
        EXPECT_EQ(item.name, expected[i]);
        EXPECT_EQ(item.isFolder, item.name == "c") << item.name;
        EXPECT_EQ(item.isFile, item.name != "c") << item.name;
    }

    EXPECT_FALSE(listFolder(folder.file("c/inside.song")).has_value());
    EXPECT_FALSE(listFolder(folder.file("missing")).has_value());
    ASSERT_TRUE(createFolders(folder.file("empty")));
    EXPECT_TRUE(listFolder(folder.file("empty")).value_or(std::vector<FolderItem>(1)).empty());
}

TEST(FileSystemTest, ReadsWholeFilesAsBytes) {
    TempFolder folder;
    std::string bytes;
    for (int i = 0; i < 200000; ++i)
        bytes += char(i * 7 % 256);
    bytes += "\0\xFF\xFE"s;
    const String path = folder.write("big.bin", bytes);
    std::string read;
    ASSERT_EQ(readFileBytes(path, read), StatusSuccess);
    EXPECT_EQ(read, bytes);

    ASSERT_EQ(readFileBytes(folder.write("empty", ""), read), StatusSuccess);
    EXPECT_EQ(read, "");

    EXPECT_EQ(readFileBytes(folder.file("missing"), read), Status(ENOENT));
    EXPECT_EQ(readFileBytes(folder.path(), read), Status(EISDIR));
    EXPECT_EQ(readFileBytes(joinPath(path, "inside"), read), Status(ENOTDIR));
}

TEST(FileSystemTest, WritesFilesAtomically) {
    TempFolder folder;
    const String path = folder.file("a.song");
    // A new file is readable by others like any file a program creates, not
    // private as the temporary file it started as.
    const mode_t savedMask = ::umask(022);
    const Status created = writeFileAtomically(path, "first");
    ::umask(savedMask);
    ASSERT_EQ(created, StatusSuccess);
    EXPECT_EQ(folder.read("a.song"), "first");
    EXPECT_EQ(modeOf(path), mode_t(0644));

    ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
    ASSERT_EQ(writeFileAtomically(path, "second, longer than the first"), StatusSuccess);
    EXPECT_EQ(folder.read("a.song"), "second, longer than the first");
    EXPECT_EQ(modeOf(path), mode_t(0640));

    ASSERT_EQ(writeFileAtomically(path, ""), StatusSuccess);
    EXPECT_TRUE(fileExists(path));
    EXPECT_EQ(folder.read("a.song"), "");

    const std::string binary = "\0\r\n\xFF"s;
    ASSERT_EQ(writeFileAtomically(folder.file("J\u00e9sus.bin"), binary), StatusSuccess);
    EXPECT_EQ(folder.read("J\u00e9sus.bin"), binary);

    // No temporary file is left beside the targets.
    EXPECT_EQ(namesIn(folder.path()), (StringArray{"J\u00e9sus.bin", "a.song"}));
}

TEST(FileSystemTest, FailedWritesLeaveEverythingAsItWas) {
    TempFolder folder;
    EXPECT_EQ(writeFileAtomically(folder.file("missing/a.song"), "x"), Status(ENOENT));
    EXPECT_FALSE(folderExists(folder.file("missing")));
    EXPECT_EQ(writeFileAtomically("", "x"), Status(ENOENT));

    // A folder in the way of the target.
    const String sub = folder.file("sub");
    ASSERT_TRUE(createFolders(sub));
    folder.write("sub/kept.song", "kept");
    EXPECT_NE(writeFileAtomically(sub, "x"), StatusSuccess);
    EXPECT_TRUE(folderExists(sub));
    EXPECT_EQ(folder.read("sub/kept.song"), "kept");

    // A file in the way of the folder.
    const String file = folder.write("file", "old");
    EXPECT_EQ(writeFileAtomically(joinPath(file, "a.song"), "x"), Status(ENOTDIR));
    EXPECT_EQ(folder.read("file"), "old");

    EXPECT_EQ(namesIn(folder.path()), (StringArray{"file", "sub"}));
    EXPECT_EQ(namesIn(sub), StringArray{"kept.song"});
}

TEST(FileSystemTest, WriteIntoAReadOnlyFolderKeepsTheOldFile) {
    if (::geteuid() == 0) GTEST_SKIP() << "permissions do not bind the super-user";
    TempFolder folder;
    const String path = folder.write("locked/a.song", "old");
    const String locked = folder.file("locked");
    ASSERT_EQ(::chmod(locked.c_str(), 0555), 0);
    EXPECT_EQ(writeFileAtomically(path, "new"), Status(EACCES));
    ::chmod(locked.c_str(), 0755);
    EXPECT_EQ(folder.read("locked/a.song"), "old");
    EXPECT_EQ(namesIn(locked), StringArray{"a.song"});
}

// A write that fails half-way (here: the file size limit is hit) keeps the old
// file and leaves no partial temporary file behind.
TEST(FileSystemTest, WriteFailingHalfWayKeepsTheOldFile) {
    TempFolder folder;
    const String path = folder.write("a.song", "old contents");
    ASSERT_EQ(::chmod(path.c_str(), 0600), 0);

    rlimit saved{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &saved), 0);
    if (saved.rlim_max != RLIM_INFINITY && saved.rlim_max < 4096)
        GTEST_SKIP() << "file size limit already below the test's needs";
    const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limited = saved;
    limited.rlim_cur = 1024;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limited), 0);
    const Status status = writeFileAtomically(path, std::string(64 * 1024, 'x'));
    ::setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previousHandler);

    EXPECT_EQ(status, Status(EFBIG));
    EXPECT_EQ(folder.read("a.song"), "old contents");
    EXPECT_EQ(modeOf(path), mode_t(0600));
    EXPECT_EQ(namesIn(folder.path()), StringArray{"a.song"});
}

TEST(FileSystemTest, DescribesStatuses) {
    EXPECT_EQ(statusMessage(Status(ENOENT)), std::strerror(ENOENT));
    EXPECT_FALSE(isXmlStatus(StatusXmlBase));
    EXPECT_TRUE(isXmlStatus(StatusXmlBase + 1) && isXmlStatus(StatusXmlMalformed));
    EXPECT_FALSE(isXmlStatus(StatusXmlBase + 0x100));
    // Every status has a text of its own.
    const Status distinct[] = {StatusSuccess,       StatusFailed,       Status(ENOENT),
                               Status(EISDIR),      StatusXmlBase + 1,  StatusXmlBase + 2,
                               StatusXmlBase + 200, StatusXmlMalformed, 0xDEADBEEF};
    std::set<String> texts;
    for (const Status status : distinct) {
        EXPECT_FALSE(statusMessage(status).empty()) << status;
        texts.insert(statusMessage(status));
    }
    EXPECT_EQ(texts.size(), std::size(distinct));
}

}  // namespace
}  // namespace melodex
