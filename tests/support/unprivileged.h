#pragma once

// Runs a piece of a test in a child process that has given up the
// super-user's powers (when the test runs as root, as CI does), so that
// permission bits bind it as they bind a church's ordinary user account.
// The child is user and group 65534 ("nobody"); what it must reach has to
// be open to others (TempFolder is private: chmod it 0755 first).
//
//     EXPECT_EQ(test::asUnprivileged([&] { return tryToWrite() ? 1 : 0; }), 0);

#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace melodex::test {

inline constexpr unsigned UnprivilegedId = 65534;

// The child's exit code: what `work` returned, 99 when the powers could not
// be given up, -1 when the child did not end normally.
inline int asUnprivileged(const std::function<int()>& work) {
    const pid_t child = ::fork();
    if (child == 0) {
        if (::geteuid() == 0 && (::setgid(UnprivilegedId) != 0 || ::setuid(UnprivilegedId) != 0))
            ::_exit(99);
        ::_exit(work());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace melodex::test
