#pragma once

// A base class for objects that several threads share: it carries a lock
// that its subclasses take around the work that must not interleave.
//
// A new object is unsynchronised: lock and unlock do nothing, so objects
// that live on one thread pay nothing. synchronize() makes the lock a real
// (recursive) mutex; call it before a second thread can reach the object,
// typically in the subclass's constructor.
//
//     class Registry : public LockableObject {
//     public:
//         Registry() { synchronize(); }
//         void add(int x) { lock(); m_items.push_back(x); unlock(); }
//     };

#include <mutex>

namespace melodex {

class LockableObject {
public:
    // Waits for ever.
    static constexpr int InfiniteTimeout = -1;

    LockableObject() = default;
    // A copy has a lock of its own, in the same mode as the original's.
    LockableObject(const LockableObject& other) : m_synchronized(other.m_synchronized) {}
    LockableObject& operator=(const LockableObject&) { return *this; }
    virtual ~LockableObject() = default;

    // Makes lock() and unlock() real from now on.
    void synchronize() { m_synchronized = true; }
    bool isSynchronized() const { return m_synchronized; }

    // Takes the lock, waiting at most `timeoutMs` milliseconds (for ever when
    // negative); false when the time ran out. The lock is recursive: the
    // thread that holds it may take it again, and must unlock as often.
    virtual bool lock(int timeoutMs = InfiniteTimeout);
    virtual void unlock();

private:
    std::recursive_timed_mutex m_mutex;
    bool m_synchronized = false;
};

}  // namespace melodex
