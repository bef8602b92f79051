# Finds utf8proc, which Debian ships with a pkg-config file but no CMake package.
# Defines the imported target utf8proc::utf8proc.
find_path(Utf8proc_INCLUDE_DIR NAMES utf8proc.h)
find_library(Utf8proc_LIBRARY NAMES utf8proc)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Utf8proc REQUIRED_VARS Utf8proc_LIBRARY Utf8proc_INCLUDE_DIR)

if(Utf8proc_FOUND AND NOT TARGET utf8proc::utf8proc)
    add_library(utf8proc::utf8proc UNKNOWN IMPORTED)
    set_target_properties(utf8proc::utf8proc PROPERTIES
        IMPORTED_LOCATION "${Utf8proc_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${Utf8proc_INCLUDE_DIR}")
endif()
mark_as_advanced(Utf8proc_INCLUDE_DIR Utf8proc_LIBRARY)
