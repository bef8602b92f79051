#include "melodex/render/table_pdf.h"

namespace melodex {

namespace {

int printInto(PdfDocument& pdf, Table& table, const TablePrintOptions& options) {
    if (!options.title.empty()) pdf.setTitle(options.title);
    return printTable(pdf.context(), table, options);
}

}  // namespace

PrintResult printTableToPdf(Table& table, std::string_view path, const TablePrintOptions& options,
                            SizeF pageSize) {
    PrintResult result;
    PdfDocument pdf(pageSize);
    const int pages = printInto(pdf, table, options);
    if (pdf.saveToFile(path) != StatusSuccess) {
        result.error = pdf.lastError();
        return result;
    }
    result.pages = pages;
    return result;
}

std::string printTableToPdf(Table& table, const TablePrintOptions& options, SizeF pageSize) {
    PdfDocument pdf(pageSize);
    printInto(pdf, table, options);
    return pdf.finish();
}

}  // namespace melodex
