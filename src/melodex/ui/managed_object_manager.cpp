#include "melodex/ui/managed_object_manager.h"

namespace melodex {

ManagedObjectManager::ManagedObjectManager() {
    synchronize();
}

// The objects still listed belong to whoever still holds references; at
// process end they are left to the system, as programs expect.
ManagedObjectManager::~ManagedObjectManager() = default;

ManagedObject* ManagedObjectManager::add(ManagedObject* object) {
    if (!object) return nullptr;
    lock(InfiniteTimeout);
    if (object->incRefCount() == 1) {
        object->m_previous = nullptr;
        object->m_next = m_newest;
        if (m_newest) m_newest->m_previous = object;
        m_newest = object;
        ++m_count;
        if (!m_oldest) m_oldest = object;
    }
    unlock();
    return object;
}

void ManagedObjectManager::remove(ManagedObject* object) {
    if (!object) return;
    lock(InfiniteTimeout);
    if (object->decRefCount() < 1) {
        // An object never added has null links and is neither end, so the
        // unlinking changes nothing; the count still drops, which callers
        // who do not balance add and remove have always seen.
        if (m_oldest == object) m_oldest = object->m_previous;
        if (m_newest == object) m_newest = object->m_next;
        if (object->m_previous) object->m_previous->m_next = object->m_next;
        if (object->m_next) object->m_next->m_previous = object->m_previous;
        object->m_previous = nullptr;
        object->m_next = nullptr;
        delete object;
        --m_count;
    }
    unlock();
}

}  // namespace melodex
