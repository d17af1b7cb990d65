# What every target of this project has in common.

add_library(nvh_common INTERFACE)
target_include_directories(nvh_common INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_definitions(nvh_common INTERFACE
    QT_NO_CAST_FROM_BYTEARRAY
    QT_DISABLE_DEPRECATED_BEFORE=0x050F00)
target_compile_options(nvh_common INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
    $<$<BOOL:${NVH_WARNINGS_AS_ERRORS}>:-Werror>)
if(NVH_SANITIZE)
    target_compile_options(nvh_common INTERFACE -fsanitize=address,undefined -fno-omit-frame-pointer)
    target_link_options(nvh_common INTERFACE -fsanitize=address,undefined)
endif()

# nvh_add_program(NAME [SOURCES …] [LIBRARIES …]): a program in build/bin.
function(nvh_add_program name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE nvh_common ${ARG_LIBRARIES})
    install(TARGETS ${name} RUNTIME)
endfunction()

# nvh_add_test(NAME [SOURCES …] [LIBRARIES …] [LABELS …] [TIMEOUT seconds] [LOCKS …]): a Qt Test program that CTest
# runs without a display. LOCKS names what two tests must not use at once (a fixed port, the sound device).
# PRIVATE_FILES gives it a /tmp of its own and programs that it may replace, PRIVATE_NETWORK a network of its own too;
# such a test needs no lock for what is its own.
function(nvh_add_test name)
    cmake_parse_arguments(ARG "PRIVATE_FILES;PRIVATE_NETWORK" "TIMEOUT" "SOURCES;LIBRARIES;LABELS;LOCKS" ${ARGN})
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 60)
    endif()
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE nvh_common Qt6::Test ${ARG_LIBRARIES})
    target_compile_definitions(${name} PRIVATE
        NVH_BIN_DIR="${CMAKE_RUNTIME_OUTPUT_DIRECTORY}"
        NVH_LIB_DIR="${CMAKE_LIBRARY_OUTPUT_DIRECTORY}"
        NVH_SOURCE_DIR="${CMAKE_SOURCE_DIR}")
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    set(runner)
    if(ARG_PRIVATE_FILES OR ARG_PRIVATE_NETWORK)
        set(runner ${CMAKE_SOURCE_DIR}/tests/support/in-private-namespace)
        if(ARG_PRIVATE_NETWORK)
            list(APPEND runner --net)
        endif()
        list(APPEND runner --keep ${CMAKE_SOURCE_DIR} --keep ${CMAKE_BINARY_DIR})
    endif()
    add_test(NAME ${name} COMMAND ${runner} $<TARGET_FILE:${name}>)
    set_tests_properties(${name} PROPERTIES
        TIMEOUT ${ARG_TIMEOUT}
        LABELS "${ARG_LABELS}"
        RESOURCE_LOCK "${ARG_LOCKS}"
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/support/lsan.supp")
endfunction()
