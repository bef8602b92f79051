#pragma once

// Starts another program of the family (the song editor, the song viewer)
// and, when asked, waits for it to end.
//
//     ProcessLauncher launcher;
//     LaunchResult result =
//         launcher.start(editor, {"--exclusive", songPath}, LaunchWait::UntilExit);
//     if (!result.started) ...  // result.error says why
//
// The program gets the arguments exactly as given, one by one, never through
// a shell, so paths with spaces, quotes or other shell characters arrive
// intact. It inherits the environment, the current folder and the standard
// streams. A program that is not waited for is reaped in the background when
// it ends, so it never lingers as a zombie.
//
// The functions are virtual so that a test can put a fake in place of the
// real launcher where the program under test takes one.

#include "melodex/foundation/status.h"
#include "melodex/foundation/text.h"

namespace melodex {

enum class LaunchWait {
    No,         // return as soon as the program runs
    UntilExit,  // block until it ends, however long that takes
};

struct LaunchResult {
    // The program was found and its code began to run.
    bool started = false;
    // When not started: the errno value that says why (ENOENT for a missing
    // program, EACCES for a file that may not be executed, ENOEXEC for one
    // that is not a program).
    Status error = StatusSuccess;
    // The process id; 0 when not started.
    int processId = 0;
    // When waited for: true once the program ended, with its exit code, or
    // with the signal that ended it (exitCode is then -1).
    bool exited = false;
    int exitCode = -1;
    int signal = 0;
};

class ProcessLauncher {
public:
    ProcessLauncher() = default;
    ProcessLauncher(const ProcessLauncher&) = default;
    ProcessLauncher& operator=(const ProcessLauncher&) = default;
    virtual ~ProcessLauncher();

    // Starts `program` (a path, or a bare name looked up in $PATH) with
    // `arguments`; the program's own name is passed before them as usual.
    virtual LaunchResult start(const String& program, const StringArray& arguments,
                               LaunchWait wait = LaunchWait::No);
};

}  // namespace melodex
