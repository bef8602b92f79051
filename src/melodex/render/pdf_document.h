#pragma once

// A PDF file drawn page by page through a printing DrawContext, held in
// memory until it is saved.
//
//     PdfDocument pdf(PageSizeA4);
//     pdf.setTitle("Song library");
//     DrawContext& dc = pdf.context();
//     table.calculate(dc, {36, 36, 559, 806});
//     table.draw(dc);
//     dc.newPage();                          // a second page
//     if (pdf.saveToFile("/tmp/list.pdf") != StatusSuccess)
//         std::cerr << pdf.lastError().message() << '\n';
//
// Text is embedded as subsets of the fonts used, so the file reads the
// same anywhere and its text can be searched and copied. Saving ends the
// document: what is drawn afterwards is lost.

#include <memory>
#include <string>
#include <string_view>

#include "melodex/foundation/status.h"
#include "melodex/foundation/text.h"
#include "melodex/ui/draw_context.h"

namespace melodex {

// Paper sizes in points.
inline constexpr SizeF PageSizeA4{595.276, 841.89};
inline constexpr SizeF PageSizeLetter{612.0, 792.0};

class PdfDocument {
public:
    explicit PdfDocument(SizeF pageSize = PageSizeA4);
    PdfDocument(const PdfDocument&) = delete;
    PdfDocument& operator=(const PdfDocument&) = delete;
    ~PdfDocument();

    // The printing context of the document; valid as long as it.
    DrawContext& context();

    // The title the file's properties show.
    void setTitle(const String& title);

    // Ends the document and gives the file's bytes; empty when drawing
    // failed (lastError() then holds StatusFailed).
    const std::string& finish();

    // Ends the document and writes it atomically. 0, StatusFailed when
    // drawing failed, or the writer's status.
    [[nodiscard]] Status saveToFile(std::string_view path);

    const FileError& lastError() const { return m_lastError; }

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
    FileError m_lastError;
};

}  // namespace melodex
