#include "melodex/render/png_image.h"

#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <cairo.h>
#include <png.h>

#include "melodex/foundation/file_system.h"
#include "melodex/render/cairo_draw_context.h"

namespace melodex {

namespace {

void appendBytes(png_structp png, png_bytep data, png_size_t length) {
    static_cast<std::string*>(png_get_io_ptr(png))
        ->append(reinterpret_cast<const char*>(data), length);
}

void flushNothing(png_structp) {}

// libpng reports an error by jumping back to the setjmp in encodePng; it
// prints nothing, the empty result tells.
[[noreturn]] void failQuietly(png_structp png, png_const_charp) {
    png_longjmp(png, 1);
}

void ignoreWarning(png_structp, png_const_charp) {}

// Encodes the surface's RGB24 pixels as an 8-bit RGB PNG. Cairo's own
// writer keeps zlib's default level and tries every row filter, which takes
// some 30 ms for an A4 page at 96 dpi; a page of text on a plain ground
// compresses as well unfiltered at level 3, in a sixth of the time.
//
// libpng leaves by longjmp on errors, past any destructor: everything with
// one (the output, the row buffer) belongs to the caller.
bool encodePng(cairo_surface_t* surface, std::string& out, std::vector<png_byte>& row) {
    const int width = cairo_image_surface_get_width(surface);
    const int height = cairo_image_surface_get_height(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    const unsigned char* data = cairo_image_surface_get_data(surface);
    png_structp png =
        png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, failQuietly, ignoreWarning);
    if (png == nullptr) return false;
    png_infop info = png_create_info_struct(png);
    if (info == nullptr) {
        png_destroy_write_struct(&png, nullptr);
        return false;
    }
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_set_write_fn(png, &out, appendBytes, flushNothing);
    png_set_IHDR(png, info, png_uint_32(width), png_uint_32(height), 8, PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_compression_level(png, 3);
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_NONE);
    png_write_info(png, info);
    for (int y = 0; y < height; ++y) {
        // RGB24 keeps each pixel as a native-endian 32-bit 0x00RRGGBB.
        const auto* pixels =
            reinterpret_cast<const std::uint32_t*>(data + std::ptrdiff_t(y) * stride);
        for (int x = 0; x < width; ++x) {
            row[std::size_t(x) * 3] = png_byte((pixels[x] >> 16) & 0xFF);
            row[std::size_t(x) * 3 + 1] = png_byte((pixels[x] >> 8) & 0xFF);
            row[std::size_t(x) * 3 + 2] = png_byte(pixels[x] & 0xFF);
        }
        png_write_row(png, row.data());
    }
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return true;
}

}  // namespace

struct PngImage::Impl {
    cairo_surface_t* surface = nullptr;
    cairo_t* cr = nullptr;
    std::unique_ptr<CairoDrawContext> context;

    ~Impl() {
        context.reset();
        if (cr != nullptr) cairo_destroy(cr);
        if (surface != nullptr) cairo_surface_destroy(surface);
    }
};

PngImage::PngImage(SizeF size, double dotsPerInch) : m_impl(std::make_unique<Impl>()) {
    Impl& d = *m_impl;
    const double scale = dotsPerInch > 0 ? dotsPerInch / 72.0 : 1.0;
    const int width = std::max(1, int(std::ceil(size.width * scale - 1e-6)));
    const int height = std::max(1, int(std::ceil(size.height * scale - 1e-6)));
    d.surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
    d.cr = cairo_create(d.surface);
    cairo_set_source_rgb(d.cr, 1, 1, 1);
    cairo_paint(d.cr);
    cairo_scale(d.cr, scale, scale);
    d.context = std::make_unique<CairoDrawContext>(d.cr, size, false);
}

PngImage::~PngImage() = default;

DrawContext& PngImage::context() {
    return *m_impl->context;
}

int PngImage::pixelWidth() const {
    return cairo_image_surface_get_width(m_impl->surface);
}

int PngImage::pixelHeight() const {
    return cairo_image_surface_get_height(m_impl->surface);
}

Color PngImage::pixel(int x, int y) const {
    if (x < 0 || y < 0 || x >= pixelWidth() || y >= pixelHeight()) return 0;
    cairo_surface_flush(m_impl->surface);
    const unsigned char* data = cairo_image_surface_get_data(m_impl->surface);
    const int stride = cairo_image_surface_get_stride(m_impl->surface);
    // RGB24 keeps each pixel as a native-endian 32-bit 0x00RRGGBB.
    const auto value =
        *reinterpret_cast<const std::uint32_t*>(data + std::ptrdiff_t(y) * stride + x * 4);
    return makeColor((value >> 16) & 0xFF, (value >> 8) & 0xFF, value & 0xFF);
}

std::string PngImage::pngBytes() const {
    std::string bytes;
    cairo_surface_flush(m_impl->surface);
    if (cairo_surface_status(m_impl->surface) != CAIRO_STATUS_SUCCESS) return bytes;
    std::vector<png_byte> row(std::size_t(pixelWidth()) * 3);
    bytes.reserve(std::size_t(pixelWidth()) * std::size_t(pixelHeight()) / 8);
    if (!encodePng(m_impl->surface, bytes, row)) bytes.clear();
    return bytes;
}

Status PngImage::saveToFile(std::string_view path) {
    m_lastError.clear();
    const std::string bytes = pngBytes();
    const Status status = bytes.empty() ? StatusFailed : writeFileAtomically(path, bytes);
    m_lastError.record(FileError::Action::Write, path, status);
    return status;
}

}  // namespace melodex
