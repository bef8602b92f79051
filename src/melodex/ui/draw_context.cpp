#include "melodex/ui/draw_context.h"

#include <utility>

namespace melodex {

DrawContext::~DrawContext() = default;

void DrawContext::saveState() {
    m_saved.push_back(m_state);
    onSaveState();
}

void DrawContext::restoreState() {
    if (m_saved.empty()) return;
    m_state = std::move(m_saved.back());
    m_saved.pop_back();
    onRestoreState();
}

void DrawContext::clipTo(const RectF& rect) {
    m_state.clip = m_state.clip ? intersected(*m_state.clip, rect) : rect;
    onClip(rect);
}

}  // namespace melodex
