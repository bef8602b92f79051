#include "melodex/foundation/file_lock.h"

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>

#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace melodex {
namespace {

using namespace std::chrono_literals;

TEST(FileLockTest, OneHolderAtATimeWithATimeLimitAndACounter) {
    test::TempFolder folder;
    const String path = folder.file("songdb.lock");
    FileLock first, second;
    ASSERT_EQ(first.acquire(path, 0ms), StatusSuccess);
    EXPECT_EQ(first.acquire(path, 0ms), StatusSuccess) << "held already";
    EXPECT_EQ(first.changeCount(), 0u);

    // Two locks on one file conflict inside one process too; the waiter is
    // told once that it waits, and gives up at its time limit.
    int notices = 0;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(second.acquire(path, 60ms,
                             [&](const String& lock) {
                                 EXPECT_EQ(lock, path);
                                 ++notices;
                             }),
              StatusLockTimedOut);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 60ms);
    EXPECT_EQ(notices, 1);
    EXPECT_FALSE(second.isHeld());

    first.markChanged();
    first.markChanged();
    first.release();
    ASSERT_EQ(second.acquire(path, 0ms), StatusSuccess);
    EXPECT_EQ(second.changeCount(), 2u) << "the next holder sees how often the files changed";
    second.release();

    EXPECT_EQ(first.acquire(folder.file("missing/songdb.lock"), 0ms), Status(ENOENT));
}

TEST(FileLockTest, ADeadHolderBlocksNobody) {
    test::TempFolder folder;
    const String path = folder.file("songdb.lock");
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        FileLock held;
        if (held.acquire(path, 1s) != StatusSuccess) ::_exit(1);
        (void)!::write(ready[1], "x", 1);
        ::pause();  // killed while holding the lock
        ::_exit(0);
    }
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    FileLock lock;
    EXPECT_EQ(lock.acquire(path, 20ms), StatusLockTimedOut);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_EQ(lock.acquire(path, 2s), StatusSuccess);
    ::close(ready[0]);
    ::close(ready[1]);
}

}  // namespace
}  // namespace melodex
