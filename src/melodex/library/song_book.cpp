#include "melodex/library/song_book.h"

#include "melodex/foundation/text_file.h"

namespace melodex {

int SongBook::loadFromFile(const String& path) {
    TextFile file;
    if (const Status status = file.open(path, TextFile::Mode::Read); status != StatusSuccess)
        return int(status);
    StringArray lines;
    String line;
    while (file.readLine(line))
        lines.push_back(line);
    (void)file.close();
    loadFromBookFile(lines, path);
    return 0;
}

void SongBook::loadFromBookFile(StringArray&, const String&) {}

}  // namespace melodex
