#include "print_commands.h"

#include <algorithm>
#include <memory>
#include <vector>

#include <fmt/core.h>
#include <CLI/CLI.hpp>

#include "command_line.h"
#include "library_commands.h"
#include "melodex/library/song_database.h"
#include "melodex/render/table_pdf.h"

namespace melodex::cli {

namespace {

// Longer texts are cut so that the three columns fit across an A4 page in
// the table's 9-point type.
constexpr std::size_t LongestTitle = 60;
constexpr std::size_t LongestAuthor = 40;

// A cell's text: cut to `longest` code points with "..." and padded with a
// blank on either side, as the table puts no space between its columns.
String cellText(const String& text, std::size_t longest) {
    String shown = text;
    if (codePointLength(shown) > longest) shown = codePointSubstring(shown, 0, longest - 3) + "...";
    return " " + shown + " ";
}

}  // namespace

void printLibraryList(const std::string& path) {
    // Only a PDF is written: a name that promises something else would hold
    // a file no program opens as what its name says.
    if (!isStandardStream(path) && !endsWithIgnoreCase(path, ".pdf"))
        failUsage("--pdf must name a .pdf file (or - for standard output), not \"" + path + "\"");
    OpenLibrary library;
    struct Row {
        String title, key, author;
    };
    std::vector<Row> rows;
    for (SongDBFileEntry* file : theSongDB.files())
        rows.push_back({listedTitle(*file), file->key(), file->author()});
    std::stable_sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) {
        return compareIgnoreCase(a.title, b.title) < 0;
    });

    Table table;
    table.addColumn(cellText("Title", LongestTitle));
    table.addColumn(cellText("Key", LongestTitle));
    table.addColumn(cellText("Author", LongestAuthor));
    for (const Row& row : rows) {
        TableRow* printed = table.addRow();
        printed->cell(0)->text(cellText(row.title, LongestTitle));
        printed->cell(1)->text(cellText(row.key, LongestTitle));
        printed->cell(2)->text(cellText(row.author, LongestAuthor));
    }

    TablePrintOptions options;
    options.title =
        fmt::format("Song library: {} song{}", rows.size(), rows.size() == 1 ? "" : "s");
    const std::string pdf = printTableToPdf(table, options);
    if (pdf.empty()) fail("cannot draw the PDF of the song library");
    writeOutput(path, pdf);
    if (!isStandardStream(path)) {
        const int pages = table.rowcount() > 0 ? table.row(table.rowcount() - 1)->page() + 1 : 1;
        fmt::print("Printed {} song{} on {} page{} to {}\n", rows.size(),
                   rows.size() == 1 ? "" : "s", pages, pages == 1 ? "" : "s", path);
    }
}

void addPrintCommands(CLI::App& app) {
    CLI::App* list = nullptr;
    try {
        list = app.get_subcommand("library")->get_subcommand("list");
    } catch (const CLI::OptionNotFound&) {
        return;
    }
    auto path = std::make_shared<std::string>();
    // Option callbacks run once the whole command line is read (the --data
    // folder included) and before any command runs, so the list command can
    // still be handed to the printer here.
    list->add_option("--pdf", *path,
                     "print the list as a table to this PDF file (\"-\": standard output) "
                     "instead of listing it")
        ->type_name("OUT.pdf")
        ->each([list, path](const std::string&) {
            list->callback([path] { printLibraryList(*path); });
        });
}

}  // namespace melodex::cli
