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
    separate_arguments(flags UNIX_COMMAND "${flags}")
    get_filename_component(libdir "${pc_dir}" DIRECTORY)
    run(c++ "${CONSUMER_DIR}/main.cpp" -o "${WORK_DIR}/pkgconfig_consumer" ${flags}
        "-Wl,-rpath,${libdir}")
    run("${WORK_DIR}/pkgconfig_consumer")
endif()
