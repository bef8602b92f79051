#include "melodex/bible/bible_object.h"

#include <algorithm>

namespace melodex {

String BibleObject::oneLine(std::string_view text) {
    // A plain loop: find_first_of with a set calls memchr once per byte.
    if (std::none_of(text.begin(), text.end(), [](char c) { return c == '\r' || c == '\n'; }))
        return String(text);
    String line;
    line.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' || text[i] == '\n') {
            line += ' ';
            if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
        } else {
            line += text[i];
        }
    }
    return line;
}

}  // namespace melodex
