#pragma once

// An image file as the presentation programs hand it around: its absolute
// path and the format its first bytes announce. The display server is given
// the path and reads the file itself, so nothing is decoded here; the format
// is known from the file's signature (PNG, JPEG, GIF, WebP, BMP, SVG), which
// is also how the server decides what counts as an image.
//
// CachedImage is a small value; CachedImageManager (theImageMgr) keeps one
// shared copy per path while it is in use.

#include <string_view>

#include "melodex/foundation/text.h"

namespace melodex {

enum class ImageFormat { None, Png, Jpeg, Gif, WebP, Bmp, Svg };

// The format announced by the first bytes of a file (at least 12 bytes, up
// to 512 for SVG text); None for anything else.
ImageFormat imageFormatOf(std::string_view firstBytes);

// The format of the file at `path`; None when it cannot be read or is not
// an image.
ImageFormat imageFileFormat(std::string_view path);

// "image/png" ...; "application/octet-stream" for None.
const char* imageMimeType(ImageFormat format);

class CachedImage {
public:
    CachedImage() = default;
    // `path` is made absolute; the file's format is read once, here.
    explicit CachedImage(std::string_view path);

    // Absolute path; empty for an image made without one.
    const String& path() const { return m_path; }
    ImageFormat format() const { return m_format; }
    // True when the file existed and announced an image format when this
    // object was made.
    bool isValid() const { return m_format != ImageFormat::None; }

private:
    String m_path;
    ImageFormat m_format = ImageFormat::None;
};

}  // namespace melodex
