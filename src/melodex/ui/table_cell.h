#pragma once

// One cell of a table row: a text measured as a single line and drawn
// wrapped at word breaks inside its rectangle, with no "&" prefix processing.
// The row that holds the cell keeps its row() link pointing at itself.

#include "melodex/ui/table_object.h"

namespace melodex {

class TableCell : public TableObject {
public:
    TableCell() = default;
    explicit TableCell(const String& text) { m_text = text; }

    // An empty text is 0 x 0; any other is its single-line extent, rounded
    // up to whole points.
    Size calculate(DrawContext& dc, int layout) override;
    void draw(DrawContext& dc, int layout) override;
};

}  // namespace melodex
