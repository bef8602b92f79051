#pragma once

// A folder of its own for one test: created empty under the system's
// temporary folder and removed with everything in it when the object dies.
//
//     TempFolder folder;
//     String path = folder.file("song.song");
//     folder.write("notes.txt", "hello");

#include <string_view>

#include "melodex/foundation/text.h"

namespace melodex::test {

class TempFolder {
public:
    TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder();

    const String& path() const { return m_path; }

    // The path of `name` inside the folder (not created).
    String file(std::string_view name) const;

    // Writes `bytes` to `name` inside the folder (creating sub-folders) and
    // returns its path.
    String write(std::string_view name, std::string_view bytes) const;

    // The bytes of `name` inside the folder, or of an absolute path; empty
    // when it cannot be read.
    String read(std::string_view name) const;

private:
    String m_path;
};

// The path of a file in tests/data.
String testDataPath(std::string_view name);

}  // namespace melodex::test
