# Installs the built library into a scratch prefix and builds a consumer
# project against it, once through find_package and once through pkg-config.
file(REMOVE_RECURSE "${WORK_DIR}")
set(prefix "${WORK_DIR}/prefix")

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "command failed (${result}): ${ARGN}\n${out}\n${err}")
    endif()
endfunction()

run(${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${prefix}")

# The installed program starts from any prefix (it finds the library beside
# it), finds its product file among the installed data, and tells the same
# version as that file.
if(EXISTS "${prefix}/bin/melodex")
    if(EXISTS "${prefix}/bin/product.bcf")
        message(FATAL_ERROR "product.bcf is data; it does not belong in bin/")
    endif()
    file(STRINGS "${prefix}/share/melodex/product.bcf" product REGEX "^PRODUCT_(MAJOR|MINOR)_VERSION|^PRODUCT_REVISION")
    string(REGEX REPLACE "[^;]*=([0-9]+);[^;]*=([0-9]+);[^;]*=([0-9]+)" "\\1.\\2.\\3" product_version "${product}")
    execute_process(COMMAND "${prefix}/bin/melodex" --version
        RESULT_VARIABLE result OUTPUT_VARIABLE version ERROR_VARIABLE err
        OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT result EQUAL 0 OR NOT version STREQUAL "melodex ${product_version}")
        message(FATAL_ERROR "installed melodex --version: ${result} '${version}' ${err}; "
                            "the product file says ${product_version}")
    endif()
    file(MAKE_DIRECTORY "${WORK_DIR}/home")
    execute_process(COMMAND ${CMAKE_COMMAND} -E env "HOME=${WORK_DIR}/home"
        "XDG_DATA_HOME=${WORK_DIR}/home/data" "MELODEX_SETTINGS_FILE=${WORK_DIR}/home/settings.ini"
        "${prefix}/bin/melodex" library import "${CONSUMER_DIR}/../../data/cli/songs/grace.song"
        RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "the installed melodex is not configured: ${out}${err}")
    endif()
endif()
run(${CMAKE_COMMAND} -S "${CONSUMER_DIR}" -B "${WORK_DIR}/consumer" -G "${GENERATOR}"
    "-DCMAKE_PREFIX_PATH=${prefix}")
run(${CMAKE_COMMAND} --build "${WORK_DIR}/consumer")
run("${WORK_DIR}/consumer/melodex_consumer")

find_program(PKG_CONFIG pkg-config)
if(PKG_CONFIG)
    file(GLOB_RECURSE pc_files "${prefix}/*/melodex.pc")
    list(GET pc_files 0 pc_file)
    get_filename_component(pc_dir "${pc_file}" DIRECTORY)
    set(ENV{PKG_CONFIG_PATH} "${pc_dir}")
    execute_process(COMMAND ${PKG_CONFIG} --cflags --libs melodex
        RESULT_VARIABLE result OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "pkg-config does not know melodex")
    endif()
    if(flags MATCHES "-std=|UTF8PROC_EXPORTS")
        message(FATAL_ERROR "pkg-config --cflags melodex forces flags on consumers: ${flags}")
    endif()
    separate_arguments(flags UNIX_COMMAND "${flags}")
    get_filename_component(libdir "${pc_dir}" DIRECTORY)
    run(c++ -std=c++20 "${CONSUMER_DIR}/main.cpp" -o "${WORK_DIR}/pkgconfig_consumer" ${flags}
        "-Wl,-rpath,${libdir}")
    run("${WORK_DIR}/pkgconfig_consumer")
endif()
