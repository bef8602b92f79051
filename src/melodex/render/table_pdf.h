#pragma once

// Prints a table as a PDF: the table laid out for the printer and split
// over as many pages as it needs (printTable), with the header row, the
// title and the page number on every page.
//
//     Table table;
//     table.addColumn(" Title ");
//     ...
//     TablePrintOptions options;
//     options.title = "Song library";
//     PrintResult printed = printTableToPdf(table, "/tmp/library.pdf", options);
//     if (printed.error) std::cerr << printed.error.message() << '\n';
//
// Both forms leave the table with its printer layout, and each row with the
// page it was printed on (row->page(), 0 for the first).

#include <string>
#include <string_view>

#include "melodex/foundation/status.h"
#include "melodex/render/pdf_document.h"
#include "melodex/ui/table.h"
#include "melodex/ui/table_printer.h"

namespace melodex {

struct [[nodiscard]] PrintResult {
    int pages = 0;    // pages printed; 0 when nothing was written
    FileError error;  // what failed, if anything (the file is then untouched)
};

// Writes the PDF to `path` atomically.
PrintResult printTableToPdf(Table& table, std::string_view path,
                            const TablePrintOptions& options = {}, SizeF pageSize = PageSizeA4);

// The bytes of the PDF; empty when drawing failed.
std::string printTableToPdf(Table& table, const TablePrintOptions& options = {},
                            SizeF pageSize = PageSizeA4);

}  // namespace melodex
