#pragma once

// Melodex: songs, chords, song libraries and Bibles for church presentation
// software. Including this header gives the whole public interface.

#include "melodex/foundation/color_names.h"
#include "melodex/foundation/file_system.h"
#include "melodex/foundation/ini_file.h"
#include "melodex/foundation/local_time.h"
#include "melodex/foundation/status.h"
#include "melodex/foundation/text.h"
#include "melodex/foundation/text_encoding.h"
#include "melodex/foundation/text_file.h"
#include "melodex/foundation/uuid.h"
#include "melodex/foundation/value.h"
#include "melodex/foundation/xml.h"
#include "melodex/platform/dialogs.h"
#include "melodex/platform/headless_dialogs.h"
#include "melodex/platform/process_launcher.h"
#include "melodex/platform/settings_store.h"
#include "melodex/platform/system_info.h"
