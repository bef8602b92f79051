#include "melodex/render/pdf_document.h"

#include <cairo-pdf.h>
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

struct PdfDocument::Impl {
    std::string bytes;
    cairo_surface_t* surface = nullptr;
    cairo_t* cr = nullptr;
    std::unique_ptr<CairoDrawContext> context;
    bool finished = false;
    bool failed = false;

    ~Impl() {
        context.reset();
        if (cr != nullptr) cairo_destroy(cr);
        if (surface != nullptr) cairo_surface_destroy(surface);
    }
};

PdfDocument::PdfDocument(SizeF pageSize) : m_impl(std::make_unique<Impl>()) {
    Impl& d = *m_impl;
    d.surface =
        cairo_pdf_surface_create_for_stream(appendBytes, &d.bytes, pageSize.width, pageSize.height);
    cairo_pdf_surface_set_metadata(d.surface, CAIRO_PDF_METADATA_CREATOR, "Melodex");
    d.cr = cairo_create(d.surface);
    d.context = std::make_unique<CairoDrawContext>(d.cr, pageSize, true);
}

PdfDocument::~PdfDocument() = default;

DrawContext& PdfDocument::context() {
    return *m_impl->context;
}

void PdfDocument::setTitle(const String& title) {
    cairo_pdf_surface_set_metadata(m_impl->surface, CAIRO_PDF_METADATA_TITLE, title.c_str());
}

const std::string& PdfDocument::finish() {
    Impl& d = *m_impl;
    if (!d.finished) {
        d.finished = true;
        cairo_surface_finish(d.surface);
        // A context in an error state (out of memory, a bad font file) has
        // stopped drawing: a partial file is no file.
        if (cairo_status(d.cr) != CAIRO_STATUS_SUCCESS ||
            cairo_surface_status(d.surface) != CAIRO_STATUS_SUCCESS) {
            d.failed = true;
            d.bytes.clear();
        }
    }
    return d.bytes;
}

Status PdfDocument::saveToFile(std::string_view path) {
    m_lastError.clear();
    finish();
    if (m_impl->failed) {
        m_lastError.record(FileError::Action::Write, path, StatusFailed);
        return StatusFailed;
    }
    const Status status = writeFileAtomically(path, m_impl->bytes);
    m_lastError.record(FileError::Action::Write, path, status);
    return status;
}

}  // namespace melodex
