# brt_floor(NAME SOURCES file... [USES target...])
# One static library a floor. A floor links only what stands below it, so an include that reaches upward
# gives a program that does not link; Tests/Layout finds it already in the text.
function(brt_floor name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;USES")
    add_library(${name} STATIC ${arg_SOURCES})
    target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/Sources ${CMAKE_SOURCE_DIR})
    target_link_libraries(${name} PUBLIC ${arg_USES} PRIVATE brt_flags)
    # No operation of the floors throws.
    target_compile_options(${name} PRIVATE -fno-exceptions)
endfunction()

# brt_test(NAME SOURCES file... USES target... [THREADS] [DEPENDS_ON target...])
# One GoogleTest program a folder of Tests. THREADS: also part of the ThreadSanitizer run.
function(brt_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "THREADS" "" "SOURCES;USES;DEPENDS_ON")
    add_executable(${name} ${arg_SOURCES})
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/Tests)
    target_link_libraries(${name} PRIVATE ${arg_USES} brt_flags brt_test_flags GTest::gmock GTest::gtest_main)
    target_precompile_headers(${name} REUSE_FROM brt_test_environment)
    # What stands on the foundation must leave it as it found it.
    if("${arg_USES}" MATCHES "brt_core|brt_audio|brt_other|brt_ui|halyard")
        target_sources(${name} PRIVATE $<TARGET_OBJECTS:brt_test_environment>)
    endif()
    if(arg_DEPENDS_ON)
        add_dependencies(${name} ${arg_DEPENDS_ON})
    endif()
    add_test(NAME ${name} COMMAND ${name} --gtest_brief=1)
    if(arg_THREADS)
        set_tests_properties(${name} PROPERTIES LABELS threads)
        set_property(GLOBAL APPEND PROPERTY BRT_THREAD_TESTS ${name})
    endif()
endfunction()
