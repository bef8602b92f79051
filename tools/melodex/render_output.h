#pragma once

// Where the render commands put their pages: --out names a PDF (every page,
// as printed) or a PNG (the first page, as a screen shows it at 96 dots per
// inch), by its extension; "-" writes the PDF to standard output. --paper
// chooses A4 or Letter.
//
//     auto out = std::make_shared<RenderOutput>();
//     addRenderOutputOptions(*command, *out);
//     ...
//     renderPages(*out, "Amazing Grace", "\"Amazing Grace\"",
//                 [&](DrawContext& dc) { return layout.draw(dc); });

#include <functional>
#include <string>

#include "melodex/foundation/text.h"
#include "melodex/ui/draw_context.h"

namespace CLI {
class App;
}  // namespace CLI

namespace melodex::cli {

struct RenderOutput {
    std::string path;
    std::string paper = "a4";

    // True for a PNG: a screen image of the first page.
    bool isImage() const;
    // The display targets a profile for this output is preferably for
    // (print for a PDF, screen for a PNG).
    int targets() const;
};

// --out (required) and --paper.
void addRenderOutputOptions(CLI::App& command, RenderOutput& output);

// Sets a PDF or a PNG up, lets `draw` draw on it (returning the pages it
// drew), writes the file and says what was written. Ends the command with
// status 1 when drawing or writing fails, 2 for an extension that is
// neither .pdf nor .png.
// `title` is the document's own title (what a PDF viewer shows); `what`
// names it in the messages.
void renderPages(const RenderOutput& output, const String& title, const String& what,
                 const std::function<int(DrawContext&)>& draw);

}  // namespace melodex::cli
