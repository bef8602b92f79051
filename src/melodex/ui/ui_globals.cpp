// The shared objects of the presentation layer. They depend on nothing but
// the standard library (no configuration, no other global), so unlike the
// globals of app/ they need no place in a construction order, and app/,
// which lies below this layer, could not name them anyway.

#include "melodex/ui/cached_image_manager.h"
#include "melodex/ui/managed_object_manager.h"

namespace melodex {

CachedImageManager theImageMgr;
ManagedObjectManager theObjMgr;

}  // namespace melodex
