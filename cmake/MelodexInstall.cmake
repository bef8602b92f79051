# Install rules: headers, the library, a CMake package (find_package(Melodex))
# and a pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS melodex
    EXPORT MelodexTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

if(TARGET melodex_render)
    install(TARGETS melodex_render
        EXPORT MelodexTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
endif()

set(MELODEX_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Melodex)

install(EXPORT MelodexTargets
    NAMESPACE melodex::
    DESTINATION ${MELODEX_CMAKE_DIR})

configure_package_config_file(
    ${PROJECT_SOURCE_DIR}/cmake/MelodexConfig.cmake.in
    ${PROJECT_BINARY_DIR}/MelodexConfig.cmake
    INSTALL_DESTINATION ${MELODEX_CMAKE_DIR})
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/MelodexConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/MelodexConfig.cmake
    ${PROJECT_BINARY_DIR}/MelodexConfigVersion.cmake
    ${PROJECT_SOURCE_DIR}/cmake/FindUtf8proc.cmake
    DESTINATION ${MELODEX_CMAKE_DIR})

# The pkg-config file finds its prefix from its own place, so that an install
# under any --prefix works without reconfiguring.
file(RELATIVE_PATH MELODEX_PC_TO_PREFIX
    /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" MELODEX_PC_TO_PREFIX "${MELODEX_PC_TO_PREFIX}")
# A shared library brings its private dependencies along; only a static one
# needs them named, and naming them would hand their flags to every
# consumer (libutf8proc's carry -DUTF8PROC_EXPORTS).
if(BUILD_SHARED_LIBS)
    set(MELODEX_PC_PRIVATE "")
else()
    set(MELODEX_PC_PRIVATE "Requires.private: pugixml libutf8proc")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/melodex.pc.in ${PROJECT_BINARY_DIR}/melodex.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/melodex.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(TARGET melodex_render)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/melodex-render.pc.in
        ${PROJECT_BINARY_DIR}/melodex-render.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/melodex-render.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endif()

# Data, not programs: the library's string table, and the product file
# whose presence tells the programs of the family they are installed.
install(FILES ${PROJECT_SOURCE_DIR}/resources/Melodex.ini
    ${PROJECT_BINARY_DIR}/resources/product.bcf
    DESTINATION ${CMAKE_INSTALL_DATADIR}/melodex)

if(MELODEX_BUILD_TOOLS)
    install(TARGETS melodex_cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
