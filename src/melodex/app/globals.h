#pragma once

// The global instances that the library exports to the programs. They are
// defined together in globals.cpp, in dependency order, so that their
// construction order is fixed; each is declared next to its class:
//
//     theBaseApp    the application services object (melodex.h)
//     theAppConfig  the configuration and data folders (song_config.h)
//     theSongDB     the song library (library/song_database.h)
//     theBibleDB    the installed Bibles (bible/bible_database.h)

#include "melodex/app/melodex.h"
#include "melodex/app/song_config.h"
#include "melodex/bible/bible_database.h"
#include "melodex/library/song_database.h"
