#include "melodex/foundation/uuid.h"

#include <set>
#include <thread>
#include <unordered_set>
#include <vector>

#include <gtest/gtest.h>

namespace melodex {
namespace {

// True when `text` is the canonical form of a random UUID:
// xxxxxxxx-xxxx-4xxx-Nxxx-xxxxxxxxxxxx in lower-case hex, N one of 8 9 a b.
bool isVersion4Text(const String& text) {
    if (text.size() != 36) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (i == 8 || i == 13 || i == 18 || i == 23) {
            if (c != '-') return false;
        } else if (!((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'))) {
            return false;
        }
    }
    return text[14] == '4' && String("89ab").find(text[19]) != String::npos;
}

TEST(UuidTest, NilUuidIsAllZero) {
    const Uuid nil;
    EXPECT_TRUE(nil.isNil());
    EXPECT_EQ(nil.toString(), "00000000-0000-0000-0000-000000000000");
    EXPECT_EQ(nil, Uuid());
    EXPECT_FALSE(Uuid::generate().isNil());
}

TEST(UuidTest, GeneratesDistinctVersion4Uuids) {
    std::unordered_set<String> seen;
    // Which hex digits each position has shown: every random position must
    // take all sixteen values, so that no byte is left unfilled or fixed.
    std::vector<std::set<char>> digits(36);
    for (int i = 0; i < 10000; ++i) {
        const Uuid uuid = Uuid::generate();
        const String text = uuid.toString();
        ASSERT_TRUE(isVersion4Text(text)) << text;
        EXPECT_TRUE(seen.insert(text).second) << "repeated " << text;
        for (std::size_t at = 0; at < text.size(); ++at)
            digits[at].insert(text[at]);
        const Uuid copy = uuid;
        EXPECT_EQ(copy, uuid);
        EXPECT_EQ(copy.toString(), text);
    }
    for (std::size_t at = 0; at < digits.size(); ++at) {
        if (at == 8 || at == 13 || at == 18 || at == 23 || at == 14) continue;
        EXPECT_EQ(digits[at].size(), at == 19 ? 4u : 16u) << "position " << at;
    }
}

TEST(UuidTest, ThreadsGenerateDifferentUuids) {
    constexpr int PerThread = 2000;
    std::vector<String> first;
    std::vector<String> second;
    const auto generate = [](std::vector<String>& out) {
        for (int i = 0; i < PerThread; ++i)
            out.push_back(Uuid::generate().toString());
    };
    std::thread a(generate, std::ref(first));
    std::thread b(generate, std::ref(second));
    a.join();
    b.join();
    std::unordered_set<String> all(first.begin(), first.end());
    all.insert(second.begin(), second.end());
    EXPECT_EQ(all.size(), std::size_t(2 * PerThread));
}

}  // namespace
}  // namespace melodex
