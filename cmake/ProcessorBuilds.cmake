# brt_processor_builds(TARGET file...)
# Compiles each file once per processor build and adds the objects to TARGET. In every copy BRT_BUILD is the name of the
# build, which is also the namespace that the code goes into, and BRT_LANES the doubles in a vector. The other files of
# TARGET see BRT_X86_BUILDS where there are builds for x86-64 processors.
# These files are optimised in every configuration: a chain at 128 times the rate is of no use in a debugger otherwise,
# and the tests of one build against another would take minutes.
# Threads share no vector code, so the ThreadSanitizer run does without.
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64)$" AND NOT HALYARD_SANITIZER STREQUAL "thread")
    set(BRT_PROCESSOR_BUILDS portable baseline avx2 avx512)
else()
    set(BRT_PROCESSOR_BUILDS portable)
endif()
set(BRT_BUILD_FLAGS_portable -DBRT_LANES=1)
set(BRT_BUILD_FLAGS_baseline -DBRT_LANES=2 -march=x86-64)
set(BRT_BUILD_FLAGS_avx2 -DBRT_LANES=4 -march=x86-64-v3)
set(BRT_BUILD_FLAGS_avx512 -DBRT_LANES=8 -march=x86-64-v4 -mprefer-vector-width=512)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # gcc 12 takes the "undefined" operand inside its own AVX-512 operations for a fault of ours. The other builds
    # compile the same lines with the warning on.
    list(APPEND BRT_BUILD_FLAGS_avx512 -Wno-uninitialized -Wno-maybe-uninitialized)
endif()

if(HALYARD_SANITIZER MATCHES "address" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # A call for each access, not a few lines of code: 17 seconds of compile time become 5.
    set(BRT_ADDRESS_CHECKS --param=asan-instrumentation-with-call-threshold=0)
endif()

function(brt_processor_builds target)
    if("baseline" IN_LIST BRT_PROCESSOR_BUILDS)
        target_compile_definitions(${target} PRIVATE BRT_X86_BUILDS)
    endif()
    foreach(build IN LISTS BRT_PROCESSOR_BUILDS)
        set(objects ${target}_${build})
        if(NOT TARGET ${objects})
            add_library(${objects} OBJECT)
            target_include_directories(${objects} PRIVATE ${CMAKE_SOURCE_DIR}/Sources ${CMAKE_SOURCE_DIR})
            target_link_libraries(${objects} PRIVATE brt_flags)
            target_compile_options(${objects} PRIVATE
                -DBRT_BUILD=${build} ${BRT_BUILD_FLAGS_${build}}
                -O3 -fno-exceptions -fno-rtti
                # No flag that changes a result: without these two, a root or a comparison could not be a vector's.
                -fno-math-errno -fno-trapping-math
                # Checks of every operation make minutes of compile time out of unrolled loops. Bounds stay checked, by
                # AddressSanitizer; a channel belongs to one thread.
                -fno-sanitize=undefined,thread
                ${BRT_ADDRESS_CHECKS})
            target_sources(${target} PRIVATE $<TARGET_OBJECTS:${objects}>)
            set_property(GLOBAL APPEND PROPERTY BRT_BUILD_OBJECTS ${objects})
        endif()
        target_sources(${objects} PRIVATE ${ARGN})
    endforeach()
endfunction()
