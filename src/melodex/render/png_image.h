#pragma once

// An image drawn through a screen DrawContext and saved as PNG: what a
// window would show, headless.
//
//     PngImage image({400, 300});            // points; 96 dots per inch
//     table.calculate(image.context(), {8, 8, 392, 292});
//     table.draw(image.context());
//     image.saveToFile("/tmp/table.png");
//
// The image starts white. Its pixels are the size in points scaled by the
// resolution (400 x 300 points at 96 dpi are 534 x 400 pixels).

#include <memory>
#include <string>
#include <string_view>

#include "melodex/foundation/status.h"
#include "melodex/foundation/text.h"
#include "melodex/ui/draw_context.h"

namespace melodex {

class PngImage {
public:
    explicit PngImage(SizeF size, double dotsPerInch = 96.0);
    PngImage(const PngImage&) = delete;
    PngImage& operator=(const PngImage&) = delete;
    ~PngImage();

    // The screen context of the image; valid as long as it.
    DrawContext& context();

    int pixelWidth() const;
    int pixelHeight() const;
    // The colour of one pixel; 0 outside the image.
    Color pixel(int x, int y) const;

    // The image as a PNG file; empty when encoding failed.
    std::string pngBytes() const;

    // Writes the PNG atomically. 0, StatusFailed when encoding failed, or
    // the writer's status.
    [[nodiscard]] Status saveToFile(std::string_view path);

    const FileError& lastError() const { return m_lastError; }

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
    FileError m_lastError;
};

}  // namespace melodex
