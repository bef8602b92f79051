#include "melodex/ui/cached_image.h"

#include <cstring>
#include <fstream>

#include "melodex/foundation/file_system.h"

namespace melodex {

namespace {

bool startsWith(std::string_view bytes, std::string_view prefix) {
    return bytes.substr(0, prefix.size()) == prefix;
}

// SVG is text: an optional byte order mark, blanks, an XML declaration or
// comments, then an <svg element within the first few hundred bytes.
bool looksLikeSvg(std::string_view bytes) {
    if (startsWith(bytes, "\xEF\xBB\xBF")) bytes.remove_prefix(3);
    const std::size_t first = bytes.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos || bytes[first] != '<') return false;
    return bytes.find("<svg") != std::string_view::npos;
}

}  // namespace

ImageFormat imageFormatOf(std::string_view bytes) {
    if (startsWith(bytes, "\x89PNG\r\n\x1A\n")) return ImageFormat::Png;
    if (startsWith(bytes, "\xFF\xD8\xFF")) return ImageFormat::Jpeg;
    if (startsWith(bytes, "GIF87a") || startsWith(bytes, "GIF89a")) return ImageFormat::Gif;
    if (bytes.size() >= 12 && startsWith(bytes, "RIFF") && bytes.substr(8, 4) == "WEBP")
        return ImageFormat::WebP;
    // "BM" alone is too weak: the reserved fields after the size must be zero.
    if (bytes.size() >= 14 && startsWith(bytes, "BM") &&
        bytes.substr(6, 4) == std::string_view("\0\0\0\0", 4))
        return ImageFormat::Bmp;
    if (looksLikeSvg(bytes.substr(0, 512))) return ImageFormat::Svg;
    return ImageFormat::None;
}

ImageFormat imageFileFormat(std::string_view path) {
    if (!fileExists(path)) return ImageFormat::None;
    std::ifstream file{String(path), std::ios::binary};
    char head[512];
    file.read(head, sizeof head);
    return imageFormatOf(std::string_view(head, std::size_t(file.gcount())));
}

const char* imageMimeType(ImageFormat format) {
    switch (format) {
        case ImageFormat::Png:
            return "image/png";
        case ImageFormat::Jpeg:
            return "image/jpeg";
        case ImageFormat::Gif:
            return "image/gif";
        case ImageFormat::WebP:
            return "image/webp";
        case ImageFormat::Bmp:
            return "image/bmp";
        case ImageFormat::Svg:
            return "image/svg+xml";
        case ImageFormat::None:
            break;
    }
    return "application/octet-stream";
}

CachedImage::CachedImage(std::string_view path)
    : m_path(path.empty() ? String() : absolutePath(path)), m_format(imageFileFormat(m_path)) {}

}  // namespace melodex
