#pragma once

// Random (version 4) UUIDs in their canonical lower-case text form,
// "f47ac10b-58cc-4372-a567-0e02b2c3d479". Every saved song and every
// library entry is identified by one.

#include <array>
#include <cstdint>

#include "melodex/foundation/text.h"

namespace melodex {

class Uuid {
public:
    // The nil UUID (all zero).
    Uuid() = default;

    // A new random version-4 UUID.
    static Uuid generate();

    bool isNil() const;
    String toString() const;

    friend bool operator==(const Uuid&, const Uuid&) = default;

private:
    std::array<std::uint8_t, 16> m_bytes{};
};

}  // namespace melodex
