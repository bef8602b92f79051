#include "melodex/foundation/uuid.h"

#include <algorithm>
#include <random>

namespace melodex {

Uuid Uuid::generate() {
    // One generator per thread, seeded from the system's entropy source: a
    // UUID needs unpredictability across processes, not cryptographic
    // strength, and seeding once keeps generation cheap.
    thread_local std::mt19937_64 engine{[] {
        std::random_device device;
        std::seed_seq seed{device(), device(), device(), device(), device(), device()};
        return std::mt19937_64(seed);
    }()};
    Uuid uuid;
    for (std::size_t i = 0; i < uuid.m_bytes.size(); i += 8) {
        std::uint64_t random = engine();
        for (std::size_t j = 0; j < 8; ++j, random >>= 8) {
            uuid.m_bytes[i + j] = std::uint8_t(random);
        }
    }
    uuid.m_bytes[6] = std::uint8_t((uuid.m_bytes[6] & 0x0F) | 0x40);  // version 4
    uuid.m_bytes[8] = std::uint8_t((uuid.m_bytes[8] & 0x3F) | 0x80);  // RFC 4122 variant
    return uuid;
}

bool Uuid::isNil() const {
    return std::all_of(m_bytes.begin(), m_bytes.end(), [](std::uint8_t b) { return b == 0; });
}

String Uuid::toString() const {
    static constexpr char Hex[] = "0123456789abcdef";
    String text;
    text.reserve(36);
    for (std::size_t i = 0; i < m_bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
        text += Hex[m_bytes[i] >> 4];
        text += Hex[m_bytes[i] & 0x0F];
    }
    return text;
}

}  // namespace melodex
