#include "melodex/render/png_image.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include <cairo.h>

#include "melodex/foundation/file_system.h"
#include "melodex/render/cairo_draw_context.h"

namespace melodex {

namespace {

cairo_status_t appendBytes(void* closure, const unsigned char* data, unsigned int length) {
    static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
    return CAIRO_STATUS_SUCCESS;
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
    if (cairo_surface_write_to_png_stream(m_impl->surface, appendBytes, &bytes) !=
        CAIRO_STATUS_SUCCESS) {
        bytes.clear();
    }
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
