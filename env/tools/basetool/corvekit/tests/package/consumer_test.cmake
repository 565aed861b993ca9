# cmake -P script: install the build (or unpack the Debian packages named in DEBS), then build and
# run the consumer both ways against the result.
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output
                    ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "failed (${result}): ${ARGN}\n${output}")
    endif()
    set(last_output "${output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
if(DEBS)
    # The Debian packages, unpacked into a scratch root as dpkg would install them below /.
    set(prefix ${WORK_DIR}/root/usr)
    file(MAKE_DIRECTORY ${WORK_DIR}/root)
    foreach(deb IN LISTS DEBS)
        run(dpkg-deb -x ${deb} ${WORK_DIR}/root)
    endforeach()
else()
    # An install tree must keep working when moved: install, then rename it.
    set(prefix ${WORK_DIR}/prefix)
    run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/installed)
    file(RENAME ${WORK_DIR}/installed ${prefix})
endif()

# The tool finds its libraries from its own location, with no environment variable.
if(EXISTS ${prefix}/bin/corvekit)
    run(${CMAKE_COMMAND} -E env --unset=LD_LIBRARY_PATH ${prefix}/bin/corvekit --help)
endif()

foreach(header corvekit/corvekit.h corvekit/corvekit_export.h hulmar/ut_warning.h)
    if(NOT EXISTS ${prefix}/include/${header})
        message(FATAL_ERROR "not installed: include/${header}")
    endif()
endforeach()

# find_package(corvekit CONFIG)
run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/cmake-build -G Ninja
    -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_CXX_COMPILER=${CXX_COMPILER}
    "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}" "-DCMAKE_EXE_LINKER_FLAGS=${LINKER_FLAGS}")
run(${CMAKE_COMMAND} --build ${WORK_DIR}/cmake-build)
run(${CMAKE_COMMAND} -E env TOOLRTF=${prefix} ${WORK_DIR}/cmake-build/consumer)
if(NOT last_output MATCHES "data: ${prefix}/data")
    message(FATAL_ERROR "unexpected consumer output: ${last_output}")
endif()

# pkg-config
file(GLOB pc_file ${prefix}/lib*/pkgconfig/corvekit.pc ${prefix}/lib/*/pkgconfig/corvekit.pc)
if(NOT pc_file)
    message(FATAL_ERROR "corvekit.pc was not installed")
endif()
get_filename_component(pc_dir ${pc_file} DIRECTORY)
execute_process(COMMAND ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pc_dir}
                    pkg-config --cflags --libs corvekit
                OUTPUT_VARIABLE pc_flags RESULT_VARIABLE result OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "pkg-config does not know corvekit")
endif()
separate_arguments(pc_flags UNIX_COMMAND "${pc_flags}")
separate_arguments(extra_flags UNIX_COMMAND "${CXX_FLAGS}")
run(${CXX_COMPILER} -std=c++17 -fPIC ${extra_flags} ${CONSUMER_DIR}/main.cpp -o
    ${WORK_DIR}/pc-consumer ${pc_flags})
get_filename_component(lib_dir ${pc_dir} DIRECTORY)
run(${CMAKE_COMMAND} -E env TOOLRTF=${prefix} LD_LIBRARY_PATH=${lib_dir} ${WORK_DIR}/pc-consumer)
if(NOT last_output MATCHES "data: ${prefix}/data")
    message(FATAL_ERROR "unexpected pkg-config consumer output: ${last_output}")
endif()
