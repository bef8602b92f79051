#pragma once

// The global instances that the library exports to the programs. They are
// defined together in globals.cpp, in dependency order, so that their
// construction order is fixed; each is declared next to its class:
//
//     theBaseApp    the application services object (melodex.h)

#include "melodex/app/melodex.h"
