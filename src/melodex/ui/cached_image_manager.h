#pragma once

// The process's shared image cache, reference counted by path. add() gives
// back the cache's own copy of an image (the same object for every add of
// the same path) and counts one more holder; remove() counts one fewer and
// deletes the copy when nobody holds it. Images stay alive this way while
// they are shown, whoever first loaded them.
//
// The cache owns its copies; a pointer it returned stays valid until the
// remove() that balances the last add(). Thread-safe.
//
//     CachedImage* shown = theImageMgr.add("/slides/sunrise.jpg");
//     ...
//     theImageMgr.remove(shown);

#include <memory>
#include <mutex>
#include <string_view>
#include <unordered_map>

#include "melodex/foundation/text.h"
#include "melodex/ui/cached_image.h"

namespace melodex {

class CachedImageManager {
public:
    CachedImageManager() = default;
    CachedImageManager(const CachedImageManager&) = delete;
    CachedImageManager& operator=(const CachedImageManager&) = delete;
    ~CachedImageManager();

    // The cache's copy of `image` (by its path), one more holder; null for
    // null. An image is cached even when it is not valid, so that add and
    // remove always balance.
    CachedImage* add(const CachedImage* image);
    // The same for the image at `path` (made absolute).
    CachedImage* add(std::string_view path);
    // One holder fewer; null, or a pointer the cache does not hold, does
    // nothing. The pointer is looked up, never read, so a copy that
    // outlived its image (DisplayConnection copies share pointers) cannot
    // make the cache read freed memory.
    void remove(CachedImage* image);

    // The cached copy of the image at `path`, or null; adds no holder.
    CachedImage* find(std::string_view path) const;
    // Holders of the image, 0 when the cache does not hold it.
    int holders(const CachedImage* image) const;
    // Number of images held.
    int count() const;

private:
    struct Entry {
        std::unique_ptr<CachedImage> image;
        int holders = 0;
    };

    CachedImage* addLocked(const CachedImage& image);

    mutable std::mutex m_mutex;
    std::unordered_map<String, Entry> m_images;              // by absolute path
    std::unordered_map<const CachedImage*, String> m_paths;  // the copies handed out
};

// The image cache of the process, defined in ui/ beside theObjMgr.
extern CachedImageManager theImageMgr;

}  // namespace melodex
