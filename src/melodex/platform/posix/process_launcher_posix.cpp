#include "melodex/platform/process_launcher.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <system_error>
#include <thread>
#include <vector>

#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "melodex/foundation/file_system.h"

extern char** environ;

namespace melodex {

namespace {

// 0 when `path` names a file that this user may execute; otherwise the
// errno value that exec would give. Checking first gives a clear answer even
// where posix_spawn cannot report a failed exec from the child.
Status checkExecutable(const String& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) return Status(errno);
    if (!S_ISREG(info.st_mode) || (info.st_mode & 0111) == 0) return Status(EACCES);
    if (::access(path.c_str(), X_OK) != 0) return Status(errno);
    return StatusSuccess;
}

// The file to run: a name holding a "/" as it is, a bare name from $PATH.
// Empty entries of $PATH are skipped: they would mean the current folder,
// which must not decide which program runs.
Status resolveProgram(const String& program, String& resolved) {
    if (program.empty()) return Status(ENOENT);
    if (program.find('/') != String::npos) {
        resolved = program;
        return checkExecutable(program);
    }
    const char* searchPath = std::getenv("PATH");
    Status firstError = Status(ENOENT);
    for (const String& folder :
         split(searchPath != nullptr ? searchPath : "/usr/bin:/bin", ":", EmptyPieces::Skip)) {
        // A folder that cannot be searched or holds no such file is passed
        // over; a file that is there but may not be run explains more than
        // the folders where nothing was found.
        String candidate = joinPath(folder, program);
        if (::access(candidate.c_str(), F_OK) != 0) continue;
        Status status = checkExecutable(candidate);
        if (status == StatusSuccess) {
            resolved = candidate;
            return StatusSuccess;
        }
        if (firstError == Status(ENOENT)) firstError = status;
    }
    return firstError;
}

// A child that nobody waits for stays a zombie until its parent ends, and
// the viewer can be started many times in one session. It is reaped by a
// detached thread blocked in waitpid on that one process id. The other
// usual answers do not fit a library: a SIGCHLD handler takes over a
// process-wide signal that the host program (a GUI toolkit's process class,
// for one) may own, and a double fork needs code between fork and exec,
// which posix_spawn does not allow and which a multithreaded host may run
// only async-signal-safe calls in. A blocked thread costs a small stack and
// no CPU.
void reapInBackground(pid_t pid) {
    try {
        std::thread([pid] {
            int status = 0;
            while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
            }
        }).detach();
    } catch (const std::system_error&) {
        // No thread could be made: the process then remains a zombie until
        // this program ends, which is all that is lost.
    }
}

void waitForExit(pid_t pid, LaunchResult& result) {
    int status = 0;
    pid_t done;
    do {
        done = ::waitpid(pid, &status, 0);
    } while (done < 0 && errno == EINTR);
    // ECHILD: the host lets the system reap children (SIGCHLD ignored), so
    // the process has ended but its exit status is gone.
    if (done < 0) return;
    if (WIFEXITED(status)) {
        result.exited = true;
        result.exitCode = WEXITSTATUS(status);
    } else if (WIFSIGNALED(status)) {
        result.exited = true;
        result.signal = WTERMSIG(status);
    }
}

// The attributes give the child default signal dispositions and an empty
// signal mask, so that what the host program blocked or ignored (SIGPIPE,
// often) does not leak into the editor or viewer.
class SpawnAttributes {
public:
    SpawnAttributes() {
        m_valid = ::posix_spawnattr_init(&m_attributes) == 0;
        if (!m_valid) return;
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        ::posix_spawnattr_setsigmask(&m_attributes, &none);
        ::posix_spawnattr_setsigdefault(&m_attributes, &all);
        ::posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;
    ~SpawnAttributes() {
        if (m_valid) ::posix_spawnattr_destroy(&m_attributes);
    }

    const posix_spawnattr_t* get() const { return m_valid ? &m_attributes : nullptr; }

private:
    posix_spawnattr_t m_attributes{};
    bool m_valid = false;
};

}  // namespace

ProcessLauncher::~ProcessLauncher() = default;

LaunchResult ProcessLauncher::start(const String& program, const StringArray& arguments,
                                    LaunchWait wait) {
    LaunchResult result;
    // A NUL would silently cut an argument short.
    for (const String& argument : arguments) {
        if (argument.find('\0') != String::npos) {
            result.error = Status(EINVAL);
            return result;
        }
    }
    String path;
    if (Status status = resolveProgram(program, path); status != StatusSuccess) {
        result.error = status;
        return result;
    }

    std::vector<char*> argv;
    argv.reserve(arguments.size() + 2);
    argv.push_back(const_cast<char*>(program.c_str()));
    for (const String& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);

    // posix_spawn reports an exec that fails in the child (a file that is
    // not a program, a script whose interpreter is missing) as its own
    // return value on the systems we build for, so "started" means the
    // program's code runs.
    SpawnAttributes attributes;
    pid_t pid = 0;
    int error = ::posix_spawn(&pid, path.c_str(), nullptr, attributes.get(), argv.data(), environ);
    if (error != 0) {
        result.error = Status(error);
        return result;
    }
    result.started = true;
    result.processId = int(pid);

    if (wait == LaunchWait::UntilExit) {
        waitForExit(pid, result);
    } else {
        reapInBackground(pid);
    }
    return result;
}

}  // namespace melodex
