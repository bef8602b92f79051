#include "melodex/foundation/lockable_object.h"

#include <chrono>

namespace melodex {

bool LockableObject::lock(int timeoutMs) {
    if (!m_synchronized) return true;
    if (timeoutMs < 0) {
        m_mutex.lock();
        return true;
    }
    return m_mutex.try_lock_for(std::chrono::milliseconds(timeoutMs));
}

void LockableObject::unlock() {
    if (m_synchronized) m_mutex.unlock();
}

}  // namespace melodex
