#pragma once

// An advisory lock on a lock file, held between processes (and between
// objects of one process): while one holder has it, every other waits.
//
//     FileLock lock;
//     if (Status status = lock.acquire(folder + "/songdb.lock", 30s, onWait); status == 0) {
//         ... change the files the lock guards ...
//         lock.release();
//     }
//
// The lock is an open-file-description lock (fcntl F_OFD_SETLK): the
// kernel drops it when its holder ends, also when the holder crashes, so a
// dead program never blocks the others; on NFS it is a lock of the NFS lock
// protocol and so holds between computers too. Two FileLock objects on one
// file conflict even inside one process. The lock file itself is never
// deleted: deleting it while another program waits on it would let two
// holders in at once.
//
// The lock file also carries a change counter, so that a new holder can
// tell whether another program changed what the lock guards since it last
// looked (see changeCount() and markChanged()).

#include <chrono>
#include <cstdint>
#include <functional>

#include "melodex/foundation/status.h"
#include "melodex/foundation/text.h"

namespace melodex {

class FileLock {
public:
    // Called once when acquire() has to wait, with the lock file's path.
    using WaitNotice = std::function<void(const String& lockPath)>;

    FileLock() = default;
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    ~FileLock();  // releases the lock

    // Takes the lock, creating the lock file when it is missing and waiting
    // up to `timeout` while another holder has it. 0; StatusLockTimedOut
    // when the time ran out; the errno value when the file cannot be opened
    // or locked. Acquiring a lock already held does nothing and returns 0.
    [[nodiscard]] Status acquire(const String& path, std::chrono::milliseconds timeout,
                                 const WaitNotice& notice = {});

    // Gives the lock up; nothing happens when it is not held.
    void release();

    bool isHeld() const { return m_fd >= 0; }
    const String& path() const { return m_path; }

    // The number of changes holders recorded in the lock file, read when
    // the lock was acquired; 0 for a new lock file.
    std::uint64_t changeCount() const { return m_count; }

    // Records in the lock file that the holder changed what the lock
    // guards (counts one up). Only while the lock is held.
    void markChanged();

private:
    int m_fd = -1;
    String m_path;
    std::uint64_t m_count = 0;
};

}  // namespace melodex
