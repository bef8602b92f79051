#include "melodex/bible/bible_object.h"

namespace melodex {

String BibleObject::oneLine(std::string_view text) {
    if (text.find_first_of("\r\n") == std::string_view::npos) return String(text);
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
