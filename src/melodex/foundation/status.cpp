#include "melodex/foundation/status.h"

#include <cstring>

namespace melodex {

namespace {

// The parser's own codes, in its order (pugixml's xml_parse_status).
constexpr const char* XmlMessages[] = {
    "no error",
    "XML file not found",
    "error reading from XML file",
    "could not allocate memory for XML parsing",
    "internal XML parser error",
    "unrecognised XML tag",
    "malformed XML declaration or processing instruction",
    "malformed XML comment",
    "malformed XML CDATA section",
    "malformed XML document type declaration",
    "malformed XML text",
    "malformed XML start tag",
    "malformed XML attribute",
    "malformed XML end tag",
    "XML start and end tags do not match",
    "XML document ends with an unexpected character",
    "no XML document element found",
};

}  // namespace

std::string statusMessage(Status status) {
    if (status == StatusSuccess) return "success";
    if (status == StatusFailed) return "the document is not what was expected";
    if (status == StatusNotRegularFile) return "not a regular file; it is left as it is";
    if (status == StatusNoFolder) return "no data folder is configured";
    if (status == StatusLockTimedOut) return "another program kept the library locked too long";
    if (status == StatusReadOnly) return "opened for reading only";
    if (status == StatusXmlMalformed) return "not a single well-formed XML document";
    if (isXmlStatus(status)) {
        const Status code = status - StatusXmlBase;
        if (code < std::size(XmlMessages)) return XmlMessages[code];
        return "XML parse error " + std::to_string(code);
    }
    if (status < 4096) {
        return std::strerror(int(status));
    }
    return "error " + std::to_string(status);
}

void FileError::record(Action what, std::string_view where, Status result) {
    if (result == StatusSuccess || status != StatusSuccess) return;
    status = result;
    action = what;
    path.assign(where);
}

std::string FileError::message() const {
    if (status == StatusSuccess) return {};
    static constexpr const char* Verbs[] = {
        "cannot use",           "cannot read",        "cannot write", "cannot remove",
        "cannot create folder", "cannot list folder", "cannot lock"};
    std::string text = Verbs[int(action)];
    if (!path.empty()) text += " \"" + path + "\"";
    return text + ": " + statusMessage(status);
}

}  // namespace melodex
