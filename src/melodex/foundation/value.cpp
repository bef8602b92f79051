#include "melodex/foundation/value.h"

#include <charconv>

namespace melodex {

Value::Value(double number) {
    // The shortest text that reads back to the same double.
    char buffer[32];
    const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, number);
    m_text.assign(buffer, error == std::errc() ? end : buffer);
}

int Value::toInteger(int defaultValue) const {
    return melodex::toInteger(m_text, defaultValue);
}

}  // namespace melodex
