#include "melodex/app/globals.h"

namespace melodex {

// Within one source file globals are constructed in the order written; keep
// each after those it uses.
Melodex theBaseApp;
SongConfig theAppConfig;  // registers its string table with theBaseApp
SongDatabase theSongDB;   // its folders come from theAppConfig when it opens
// The installed Bibles; theAppConfig.init gives them their folder.
BibleDatabase theBibleDB;

}  // namespace melodex
