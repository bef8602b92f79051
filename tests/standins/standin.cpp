// Stands in for the song editor and the song viewer in tests of the
// services that start them. Built twice, as "Scrivel" and "Glancer".
//
// It writes its arguments, one per line, to the file named by
// MELODEX_STANDIN_LOG (written whole at start, so a test can wait for it).
// With MELODEX_STANDIN_EDIT=1 it then adds a line to the song file named by
// its last argument, as an editor that saves the song would. With MELODEX_STANDIN_RELEASE set it
// waits (up to 30 seconds) until that file exists before it ends, so a test
// can tell whether its caller waited for it; it then writes the log's name
// with ".done" appended, so the test can wait for it to end in turn.

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

int main(int argc, char** argv) {
    if (const char* log = std::getenv("MELODEX_STANDIN_LOG")) {
        const std::string temporary = std::string(log) + ".part";
        {
            std::ofstream out(temporary, std::ios::binary);
            for (int i = 1; i < argc; ++i)
                out << argv[i] << '\n';
        }
        std::filesystem::rename(temporary, log);
    }
    if (const char* edit = std::getenv("MELODEX_STANDIN_EDIT"); edit && std::string(edit) == "1") {
        // Saves a line more, as an editor would: inside the last section of
        // a song file, at the end of any other file.
        if (argc > 1) {
            const std::string path = argv[argc - 1];
            std::ifstream in(path, std::ios::binary);
            std::string text((std::istreambuf_iterator<char>(in)),
                             std::istreambuf_iterator<char>());
            const std::size_t block = text.rfind("</block>");
            if (block == std::string::npos) {
                text += "Edited by the stand-in\n";
            } else {
                text.insert(block, "<line>Edited by the stand-in</line>\n");
            }
            std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
        }
    }
    if (const char* release = std::getenv("MELODEX_STANDIN_RELEASE")) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (!std::filesystem::exists(release) && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        if (const char* log = std::getenv("MELODEX_STANDIN_LOG")) {
            std::ofstream(std::string(log) + ".done");
        }
    }
    return 0;
}
