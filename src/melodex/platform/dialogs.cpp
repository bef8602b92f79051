#include "melodex/platform/dialogs.h"

#include <cstddef>
#include <string>

#include "melodex/foundation/file_system.h"

namespace melodex {

namespace {

std::u32string foldedCodePoints(std::string_view text) {
    std::u32string result;
    result.reserve(text.size());
    for (std::size_t pos = 0; pos < text.size();)
        result.push_back(foldCase(decodeUtf8(text, pos)));
    return result;
}

// Wildcard match with "*" and "?". On a mismatch after a star the match
// resumes one character further into the name, which keeps the work
// proportional to name length times pattern length however many stars a
// pattern holds.
bool matchesWildcard(std::u32string_view pattern, std::u32string_view name) {
    std::size_t p = 0;
    std::size_t n = 0;
    std::size_t starAt = std::u32string_view::npos;
    std::size_t resumeAt = 0;
    while (n < name.size()) {
        if (p < pattern.size() && (pattern[p] == U'?' || pattern[p] == name[n])) {
            ++p;
            ++n;
        } else if (p < pattern.size() && pattern[p] == U'*') {
            starAt = p++;
            resumeAt = n;
        } else if (starAt != std::u32string_view::npos) {
            p = starAt + 1;
            n = ++resumeAt;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == U'*')
        ++p;
    return p == pattern.size();
}

}  // namespace

Dialogs::~Dialogs() = default;

std::vector<FileFilter> parseFileFilters(std::string_view filterText) {
    // The text form is the one the family's Windows dialogs took, where "|"
    // stood for the NUL between strings and "||" for the final double NUL.
    StringArray pieces = split(filterText, "|");
    std::vector<FileFilter> filters;
    for (std::size_t i = 0; i + 1 < pieces.size(); i += 2) {
        if (pieces[i].empty()) break;
        FileFilter filter;
        filter.name = pieces[i];
        for (String& pattern : split(pieces[i + 1], ";", EmptyPieces::Skip)) {
            String trimmed = strip(pattern);
            if (!trimmed.empty()) filter.patterns.push_back(std::move(trimmed));
        }
        filters.push_back(std::move(filter));
    }
    return filters;
}

bool matchesFileFilter(const FileFilter& filter, std::string_view fileName) {
    String name = fileNameOf(fileName);
    std::u32string foldedName = foldedCodePoints(name);
    for (const String& pattern : filter.patterns) {
        // On the family's home system "*.*" also matched names without a
        // dot, and "All Files (*.*)" is expected to show every file.
        if (pattern == "*.*" || matchesWildcard(foldedCodePoints(pattern), foldedName)) return true;
    }
    return false;
}

}  // namespace melodex
