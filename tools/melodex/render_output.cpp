#include "render_output.h"

#include <fmt/core.h>
#include <CLI/CLI.hpp>

#include "command_line.h"
#include "melodex/display/song_display_profile.h"
#include "melodex/foundation/file_system.h"
#include "melodex/render/pdf_document.h"
#include "melodex/render/png_image.h"

namespace melodex::cli {

namespace {

String extensionOfOutput(const RenderOutput& output) {
    return isStandardStream(output.path) ? String(".pdf") : extensionOf(output.path);
}

String pagesText(int pages) {
    return std::to_string(pages) + (pages == 1 ? " page" : " pages");
}

}  // namespace

bool RenderOutput::isImage() const {
    return equalsIgnoreCase(extensionOfOutput(*this), ".png");
}

int RenderOutput::targets() const {
    return isImage() ? DisplayTarget::Screen : DisplayTarget::Print;
}

void addRenderOutputOptions(CLI::App& command, RenderOutput& output) {
    command
        .add_option("-o,--out", output.path,
                    "the file to write: .pdf for every page as printed, .png for the first page "
                    "as a screen shows it (96 dpi); - writes the PDF to standard output")
        ->required();
    command.add_option("--paper", output.paper, "the page size: a4 (default) or letter")
        ->transform(CLI::IsMember({"a4", "letter"}, CLI::ignore_case));
}

void renderPages(const RenderOutput& output, const String& title, const String& what,
                 const std::function<int(DrawContext&)>& draw) {
    const String extension = extensionOfOutput(output);
    if (!equalsIgnoreCase(extension, ".pdf") && !equalsIgnoreCase(extension, ".png")) {
        failUsage("--out must name a .pdf or a .png file, not \"" + output.path + "\"");
    }
    const SizeF paper = equalsIgnoreCase(output.paper, "letter") ? PageSizeLetter : PageSizeA4;
    if (output.isImage()) {
        PngImage image(paper);
        draw(image.context());
        const std::string bytes = image.pngBytes();
        if (bytes.empty()) fail("cannot draw the image of " + what);
        writeOutput(output.path, bytes);
        if (!isStandardStream(output.path))
            fmt::print("Drew the first page of {} to {}\n", what, output.path);
        return;
    }
    PdfDocument pdf(paper);
    pdf.setTitle(title);
    const int pages = draw(pdf.context());
    const std::string& bytes = pdf.finish();
    if (bytes.empty()) fail("cannot draw the PDF of " + what);
    writeOutput(output.path, bytes);
    if (!isStandardStream(output.path))
        fmt::print("Printed {} on {} to {}\n", what, pagesText(pages), output.path);
}

}  // namespace melodex::cli
