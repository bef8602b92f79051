#include "melodex/foundation/file_lock.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

namespace melodex {

namespace {

Status lastError() {
    return errno != 0 ? Status(errno) : Status(EIO);
}

// Whole-file write lock, or unlock, on an open file description.
int setLock(int fd, short type) {
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = 0;
    lock.l_len = 0;
    return ::fcntl(fd, F_OFD_SETLK, &lock);
}

std::uint64_t readCount(int fd) {
    char text[32] = {};
    const ssize_t got = ::pread(fd, text, sizeof text - 1, 0);
    if (got <= 0) return 0;
    std::uint64_t count = 0;
    std::from_chars(text, text + got, count);
    return count;
}

}  // namespace

FileLock::~FileLock() {
    release();
}

Status FileLock::acquire(const String& path, std::chrono::milliseconds timeout,
                         const WaitNotice& notice) {
    if (isHeld()) return StatusSuccess;
    const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (fd < 0) return lastError();

    const auto deadline = std::chrono::steady_clock::now() + timeout;
    auto pause = std::chrono::milliseconds(2);
    bool told = false;
    while (setLock(fd, F_WRLCK) != 0) {
        if (errno != EACCES && errno != EAGAIN && errno != EINTR) {
            const Status status = lastError();
            ::close(fd);
            return status;
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            ::close(fd);
            return StatusLockTimedOut;
        }
        if (!told && notice) notice(path);
        told = true;
        // Polling: a blocking wait cannot be given a time limit portably,
        // and a holder keeps the lock for milliseconds to seconds.
        std::this_thread::sleep_for(pause);
        pause = std::min(pause * 2, std::chrono::milliseconds(50));
    }
    m_fd = fd;
    m_path = path;
    m_count = readCount(fd);
    return StatusSuccess;
}

void FileLock::release() {
    if (!isHeld()) return;
    (void)setLock(m_fd, F_UNLCK);
    ::close(m_fd);
    m_fd = -1;
}

void FileLock::markChanged() {
    if (!isHeld()) return;
    ++m_count;
    // The counter is rewritten in place: it is the lock's own bookkeeping,
    // read only by holders of the lock, so no reader can see half of it.
    const std::string text = std::to_string(m_count) + "\n";
    if (::pwrite(m_fd, text.data(), text.size(), 0) == ssize_t(text.size()))
        (void)::ftruncate(m_fd, off_t(text.size()));
}

}  // namespace melodex
