#pragma once

// The base class of objects that several parts of a running program share
// by reference count through a ManagedObjectManager (normally theObjMgr).
//
// An object carries its own list links and count; all are zero after
// construction. The manager owns a registered object: the remove() that
// brings its count below 1 deletes it, so a managed object must come from
// plain `new`, and the caller's pointer dangles after that remove().
//
//     class Slide : public ManagedObject { ... };
//     Slide* slide = static_cast<Slide*>(theObjMgr.add(new Slide));
//     theObjMgr.add(slide);     // a second holder
//     theObjMgr.remove(slide);  // still alive
//     theObjMgr.remove(slide);  // deleted

#include <cstdint>

namespace melodex {

class ManagedObjectManager;

class ManagedObject {
public:
    ManagedObject() = default;
    // Copies links and count as they are; a copy that is to be registered on
    // its own must not be added while it still carries the original's links.
    ManagedObject(const ManagedObject& other) = default;
    ManagedObject& operator=(const ManagedObject& other) = default;
    virtual ~ManagedObject() = default;

protected:
    // For the manager, under its lock; they take no lock themselves.
    std::int32_t incRefCount() { return ++m_refCount; }
    std::int32_t decRefCount() { return --m_refCount; }
    std::int32_t refCount() const { return m_refCount; }

private:
    friend class ManagedObjectManager;

    ManagedObject* m_previous = nullptr;  // neighbour nearer the newest end
    ManagedObject* m_next = nullptr;      // neighbour nearer the oldest end
    std::int32_t m_refCount = 0;
};

}  // namespace melodex
