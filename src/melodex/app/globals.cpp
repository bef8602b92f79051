#include "melodex/app/globals.h"

namespace melodex {

// Within one source file globals are constructed in the order written; keep
// each after those it uses.
Melodex theBaseApp;
SongConfig theAppConfig;  // registers its string table with theBaseApp
SongDatabase theSongDB;   // its folders come from theAppConfig when it opens
BibleDatabase theBibleDB; // its folder comes from theAppConfig.init

}  // namespace melodex
