# Documents and resources are compiled by our own tool `docc`, and again whenever that has changed: its classes are what
# documents are checked against.

# brt_document(FILE.xml [SHARED FILE.bin] [RESOURCES LIST])
# Compiles a document to FILE.bin in the build folder. SHARED: the compiled document that "shared::" paths lead into.
# RESOURCES: the list that brt_resources has made, to check names of resources by.
function(brt_document source)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "SHARED;RESOURCES" "")
    get_filename_component(name ${source} NAME_WE)
    set(compiled ${CMAKE_CURRENT_BINARY_DIR}/${name}.bin)
    set(options)
    if(arg_SHARED)
        list(APPEND options --shared ${arg_SHARED})
    endif()
    if(arg_RESOURCES)
        list(APPEND options --resources ${arg_RESOURCES})
    endif()
    # Messages name the file as it stands in the project.
    file(RELATIVE_PATH shown ${CMAKE_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR}/${source})
    add_custom_command(
        OUTPUT ${compiled}
        COMMAND docc compile ${shown} -o ${compiled} ${options}
        DEPENDS docc ${CMAKE_CURRENT_SOURCE_DIR}/${source} ${arg_SHARED} ${arg_RESOURCES}
        WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}
        COMMENT "Compiling document ${source}"
        VERBATIM)
endfunction()

# brt_presets(FILE.presets OUTPUT SHARED FILE.bin)
# Compiles the text of presets to OUTPUT in the build folder. SHARED: the compiled document with the definitions.
function(brt_presets source output)
    cmake_parse_arguments(PARSE_ARGV 2 arg "" "SHARED" "")
    file(RELATIVE_PATH shown ${CMAKE_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR}/${source})
    add_custom_command(
        OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${output}
        COMMAND docc presets ${shown} -o ${CMAKE_CURRENT_BINARY_DIR}/${output} --shared ${arg_SHARED}
        DEPENDS docc ${CMAKE_CURRENT_SOURCE_DIR}/${source} ${arg_SHARED}
        WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}
        COMMENT "Compiling presets ${source}"
        VERBATIM)
endfunction()

# brt_resources(TARGET SYMBOL name=file...)
# A library with a table of files, an array of CResourceRow called SYMBOL. Files without a folder are the build's. The
# list stands in the build folder as TARGET.txt.
function(brt_resources target symbol)
    set(list ${CMAKE_CURRENT_BINARY_DIR}/${target}.txt)
    set(table ${CMAKE_CURRENT_BINARY_DIR}/${target}.S)
    set(lines "")
    set(files)
    foreach(resource IN LISTS ARGN)
        string(REGEX MATCH "^([^=]+)=(.+)$" matched ${resource})
        if(NOT matched)
            message(FATAL_ERROR "brt_resources: '${resource}' is not name=file")
        endif()
        get_filename_component(file ${CMAKE_MATCH_2} ABSOLUTE BASE_DIR ${CMAKE_CURRENT_BINARY_DIR})
        string(APPEND lines "${CMAKE_MATCH_1} = ${file}\n")
        list(APPEND files ${file})
    endforeach()
    file(CONFIGURE OUTPUT ${list} CONTENT "${lines}" @ONLY)
    add_custom_command(
        OUTPUT ${table}
        COMMAND docc resources ${list} -o ${table} --symbol ${symbol}
        DEPENDS docc ${list} ${files}
        COMMENT "Packing ${target}"
        VERBATIM)
    add_library(${target} STATIC ${table})
    # The assembler takes the files in, so a changed one asks for a new object.
    set_source_files_properties(${table} PROPERTIES OBJECT_DEPENDS "${files}")
    set_target_properties(${target} PROPERTIES LINKER_LANGUAGE CXX)
endfunction()
