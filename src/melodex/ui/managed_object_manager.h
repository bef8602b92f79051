#pragma once

// The process-wide registry of shared objects: every ManagedObject whose
// reference count is above zero sits in one doubly linked list, newest
// first. add() registers one more reference; the remove() that brings the
// count below 1 unlinks the object and deletes it. Both hold the manager's
// lock for their whole body, so any thread may call them.
//
// Callers must balance add and remove: a remove() of an object that was
// never added deletes it at once and leaves the manager's count one too low.
// The manager does not delete the objects still listed when it is destroyed.
//
// One manager serves the process: theObjMgr.

#include "melodex/foundation/lockable_object.h"
#include "melodex/ui/managed_object.h"

namespace melodex {

class ManagedObjectManager : public LockableObject {
public:
    ManagedObjectManager();
    ManagedObjectManager(const ManagedObjectManager&) = delete;
    ManagedObjectManager& operator=(const ManagedObjectManager&) = delete;
    ~ManagedObjectManager() override;

    // Registers one more reference and returns `object`; null gives null.
    ManagedObject* add(ManagedObject* object);
    // Releases one reference; null does nothing.
    void remove(ManagedObject* object);

    // The list as it stands; read them only while no other thread changes it.
    ManagedObject* oldest() const { return m_oldest; }
    ManagedObject* newest() const { return m_newest; }
    int count() const { return m_count; }

    // An object's neighbours and count, for walking and checking the list.
    static ManagedObject* previousOf(const ManagedObject* object) { return object->m_previous; }
    static ManagedObject* nextOf(const ManagedObject* object) { return object->m_next; }
    static int refCountOf(const ManagedObject* object) { return object->m_refCount; }

private:
    ManagedObject* m_oldest = nullptr;
    ManagedObject* m_newest = nullptr;
    int m_count = 0;
};

// The manager of the process. It needs nothing but the standard library, so
// it is defined in ui/ (ui_globals.cpp), not with the globals of app/.
extern ManagedObjectManager theObjMgr;

}  // namespace melodex
