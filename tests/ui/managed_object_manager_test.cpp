#include "melodex/ui/managed_object_manager.h"

#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace melodex {
namespace {

// Counts its own destruction, so that tests see exactly when the manager
// deletes it.
class Tracked : public ManagedObject {
public:
    explicit Tracked(std::atomic<int>& deaths) : m_deaths(deaths) {}
    ~Tracked() override { ++m_deaths; }

private:
    std::atomic<int>& m_deaths;
};

using M = ManagedObjectManager;

TEST(ManagedObjectManagerTest, CountsReferencesAndDeletesAtTheLastRemove) {
    std::atomic<int> deaths = 0;
    ManagedObjectManager manager;
    auto* object = new Tracked(deaths);
    EXPECT_EQ(M::refCountOf(object), 0);
    EXPECT_EQ(manager.add(object), object);
    EXPECT_EQ(manager.add(object), object);
    manager.remove(object);
    EXPECT_EQ(deaths, 0);
    EXPECT_EQ(M::refCountOf(object), 1);
    EXPECT_EQ(manager.count(), 1);
    manager.remove(object);
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(manager.count(), 0);
    EXPECT_EQ(manager.oldest(), nullptr);
    EXPECT_EQ(manager.newest(), nullptr);
    EXPECT_EQ(manager.add(nullptr), nullptr);
    manager.remove(nullptr);
    EXPECT_EQ(manager.count(), 0);
}

TEST(ManagedObjectManagerTest, KeepsTheListNewestFirstAndJoinsAcrossARemoval) {
    std::atomic<int> deaths = 0;
    ManagedObjectManager manager;
    auto* first = manager.add(new Tracked(deaths));
    auto* second = manager.add(new Tracked(deaths));
    auto* third = manager.add(new Tracked(deaths));
    EXPECT_EQ(manager.newest(), third);
    EXPECT_EQ(manager.oldest(), first);
    EXPECT_EQ(manager.count(), 3);
    EXPECT_EQ(M::previousOf(third), nullptr);
    EXPECT_EQ(M::nextOf(first), nullptr);

    manager.remove(second);
    EXPECT_EQ(M::nextOf(third), first);
    EXPECT_EQ(M::previousOf(first), third);
    EXPECT_EQ(manager.count(), 2);

    manager.remove(first);  // the oldest: its newer neighbour becomes the oldest
    EXPECT_EQ(manager.oldest(), third);
    EXPECT_EQ(M::nextOf(third), nullptr);
    manager.remove(third);
    EXPECT_EQ(manager.oldest(), nullptr);
    EXPECT_EQ(manager.newest(), nullptr);
    EXPECT_EQ(deaths, 3);
}

// Callers must balance add and remove; one who does not sees the object
// deleted at once and the count one too low, as programs always have.
TEST(ManagedObjectManagerTest, RemovingAnObjectNeverAddedDeletesItAndMiscounts) {
    std::atomic<int> deaths = 0;
    ManagedObjectManager manager;
    auto* kept = manager.add(new Tracked(deaths));
    manager.remove(new Tracked(deaths));
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(manager.count(), 0);
    EXPECT_EQ(manager.newest(), kept);
    EXPECT_EQ(manager.oldest(), kept);
    manager.remove(kept);
    EXPECT_EQ(manager.count(), -1);
}

// Eight threads share one object and each also churns objects of its own;
// the list must come out whole, every object deleted exactly once. Run
// under ThreadSanitizer in CI (the tsan preset).
TEST(ManagedObjectManagerTest, EightThreadsAddAndRemoveTenThousandTimesEach) {
    constexpr int Threads = 8;
    constexpr int Rounds = 10000;
    std::atomic<int> deaths = 0;
    ManagedObjectManager manager;
    auto* shared = manager.add(new Tracked(deaths));
    std::vector<std::thread> threads;
    for (int t = 0; t < Threads; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < Rounds; ++i) {
                manager.add(shared);
                auto* own = manager.add(new Tracked(deaths));
                manager.remove(shared);
                manager.remove(own);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(deaths, Threads * Rounds);
    EXPECT_EQ(manager.count(), 1);
    EXPECT_EQ(M::refCountOf(shared), 1);
    EXPECT_EQ(manager.newest(), shared);
    EXPECT_EQ(manager.oldest(), shared);
    manager.remove(shared);
    EXPECT_EQ(deaths, Threads * Rounds + 1);
}

}  // namespace
}  // namespace melodex
