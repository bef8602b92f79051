#include "melodex/ui/draw_context.h"

namespace melodex {

DrawContext::~DrawContext() = default;

}  // namespace melodex
