# How every target of ours is compiled. Applied through the interface target `brt_flags`.

find_program(CCACHE ccache)
if(CCACHE)
    # The base folder lets several checkouts share one cache. What is compiled with a precompiled header is kept only
    # on trust that nobody defines macros differently in front of it, which the compiler checks itself.
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
        CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE})
endif()

find_package(Threads REQUIRED)

# ccache makes the paths that it hands to the compiler relative to the build folder.
file(RELATIVE_PATH source_from_build ${CMAKE_BINARY_DIR} ${CMAKE_SOURCE_DIR})

add_library(brt_flags INTERFACE)
target_compile_options(brt_flags INTERFACE
    -Wall -Wextra -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Werror
    -fvisibility=hidden -fvisibility-inlines-hidden
    # Source positions in errors and messages are relative to the project, in every checkout alike.
    -ffile-prefix-map=${CMAKE_SOURCE_DIR}/=
    -ffile-prefix-map=${source_from_build}=
    # Sums round the same way wherever the compiler happens to inline them; fused steps are written out where wanted.
    -ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # A unique symbol would pin the module in memory for ever: hosts load and unload it many times.
    target_compile_options(brt_flags INTERFACE -fno-gnu-unique)
    # gcc 12 takes the standard library's own string concatenation for an overlapping copy (its bug 105651).
    target_compile_options(brt_flags INTERFACE -Wno-restrict)
else()
    # Locks are named in the declarations of what they guard.
    target_compile_options(brt_flags INTERFACE -Wthread-safety)
endif()
target_link_libraries(brt_flags INTERFACE Threads::Threads)

if(HALYARD_SANITIZER)
    add_compile_options(-fsanitize=${HALYARD_SANITIZER} -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${HALYARD_SANITIZER})
endif()
if(HALYARD_FUZZ)
    # The fuzzer sees which branches its bytes reach, in the floors too.
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()
