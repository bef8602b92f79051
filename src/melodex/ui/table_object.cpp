#include "melodex/ui/table_object.h"

namespace melodex {

TableObject::~TableObject() = default;

void TableObject::position(int layout, std::int32_t x, std::int32_t y) {
    if (!isLayout(layout)) return;
    m_rect[layout] = {x, y, x + m_size[layout].width, y + m_size[layout].height};
}

void TableObject::adjustWidth(int layout, std::int32_t width) {
    if (!isLayout(layout)) return;
    m_size[layout].width = width;
    m_rect[layout].right = m_rect[layout].left + width;
}

const Rect& TableObject::rect(int layout) const {
    static const Rect none;
    return isLayout(layout) ? m_rect[layout] : none;
}

const Size& TableObject::size(int layout) const {
    static const Size none;
    return isLayout(layout) ? m_size[layout] : none;
}

}  // namespace melodex
