#pragma once

// A small value with a text form: what attribute setters take, so that
// callers can pass strings, numbers and flags alike.
//
//     line.setAttribute("chordsize", Value(12));
//     info.setAttribute("title", Value("Amazing Grace"));
//
// Integers are kept in decimal, doubles in the shortest form that reads back
// to the same number, booleans as "1" and "0".

#include <concepts>
#include <string_view>

#include "melodex/foundation/text.h"

namespace melodex {

class Value {
public:
    Value() = default;
    Value(const String& text) : m_text(text) {}
    Value(String&& text) : m_text(std::move(text)) {}
    Value(const char* text) : m_text(text ? text : "") {}
    Value(std::string_view text) : m_text(text) {}
    Value(bool flag) : m_text(flag ? "1" : "0") {}
    Value(double number);
    template <std::integral T>
    requires(!std::same_as<T, bool> && !std::same_as<T, char>) Value(T number)
        : m_text(std::to_string(number)) {}

    const String& toString() const { return m_text; }

    // The integer reading of the text (leading number, see toInteger() in
    // text.h); `defaultValue` when the text does not start with one.
    int toInteger(int defaultValue = 0) const;

    bool isEmpty() const { return m_text.empty(); }

    friend bool operator==(const Value&, const Value&) = default;

private:
    String m_text;
};

}  // namespace melodex
