#include "melodex/ui/cached_image_manager.h"

#include "melodex/foundation/file_system.h"

namespace melodex {

CachedImageManager::~CachedImageManager() = default;

CachedImage* CachedImageManager::addLocked(const CachedImage& image) {
    Entry& entry = m_images[image.path()];
    if (!entry.image) {
        entry.image = std::make_unique<CachedImage>(image);
        m_paths.emplace(entry.image.get(), image.path());
    }
    ++entry.holders;
    return entry.image.get();
}

CachedImage* CachedImageManager::add(const CachedImage* image) {
    if (!image) return nullptr;
    std::lock_guard guard(m_mutex);
    return addLocked(*image);
}

CachedImage* CachedImageManager::add(std::string_view path) {
    const String absolute = path.empty() ? String() : absolutePath(path);
    std::lock_guard guard(m_mutex);
    if (auto found = m_images.find(absolute); found != m_images.end()) {
        ++found->second.holders;
        return found->second.image.get();
    }
    // Reads the file's head under the lock; the cache is small and rarely
    // contended, and this keeps one copy per path without a second lookup.
    return addLocked(CachedImage(absolute));
}

void CachedImageManager::remove(CachedImage* image) {
    if (!image) return;
    std::lock_guard guard(m_mutex);
    const auto path = m_paths.find(image);
    if (path == m_paths.end()) return;
    const auto found = m_images.find(path->second);
    if (--found->second.holders < 1) {
        m_images.erase(found);
        m_paths.erase(path);
    }
}

CachedImage* CachedImageManager::find(std::string_view path) const {
    std::lock_guard guard(m_mutex);
    const auto found = m_images.find(absolutePath(path));
    return found == m_images.end() ? nullptr : found->second.image.get();
}

int CachedImageManager::holders(const CachedImage* image) const {
    std::lock_guard guard(m_mutex);
    const auto path = m_paths.find(image);
    return path == m_paths.end() ? 0 : m_images.at(path->second).holders;
}

int CachedImageManager::count() const {
    std::lock_guard guard(m_mutex);
    return int(m_images.size());
}

}  // namespace melodex
