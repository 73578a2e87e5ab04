# Compiler settings that every target of this project shares.
add_library(quillon_options INTERFACE)
target_include_directories(quillon_options INTERFACE
    ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR}/generated)
target_compile_options(quillon_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
    -Wredundant-decls -Wsuggest-override -Werror)
# g++ 12 sees overlapping copies where an optimised build joins a literal and a text; there are none.
target_compile_options(quillon_options INTERFACE
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>)

# Settings of what is under test: the libraries, and programs made of them. Tests go without, so that
# their objects are the same in every build and a compiler cache has them for the second.
add_library(quillon_build_kind INTERFACE)
target_compile_options(quillon_build_kind INTERFACE $<$<CONFIG:Release>:$<IF:$<BOOL:${WIN32}>,-O1,-O2>>)
if(QUILLON_SANITIZE)
    # -Og compiles as fast as no optimisation here, and what it makes runs three times as fast.
    target_compile_options(quillon_build_kind INTERFACE -g1 -Og
        -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(quillon_options INTERFACE -fsanitize=address,undefined)
endif()
if(QUILLON_LIBFUZZER)
    target_compile_options(quillon_build_kind INTERFACE -fsanitize=fuzzer-no-link)
endif()

# Headers that files share are most of what a file costs, so several files are compiled at once. Static
# analysis builds nothing, and its checks go through all headers each time: it takes all files of a
# target together.
if(QUILLON_FILES_AT_ONCE GREATER 1)
    set(CMAKE_UNITY_BUILD ON)
    set(CMAKE_UNITY_BUILD_BATCH_SIZE ${QUILLON_FILES_AT_ONCE})
    if(QUILLON_ANALYSE)
        set(CMAKE_UNITY_BUILD_BATCH_SIZE 0)
    endif()
endif()

# quillon_library(NAME SOURCES ... [USES ...] [PRIVATELY_USES ...])
# A static library; USES are targets whose headers its own headers include.
function(quillon_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;USES;PRIVATELY_USES" ${ARGN})
    if(NOT ARG_SOURCES)
        add_library(${name} INTERFACE)
        target_link_libraries(${name} INTERFACE quillon_options ${ARG_USES})
        return()
    endif()
    add_library(${name} STATIC ${ARG_SOURCES})
    target_link_libraries(${name} PUBLIC quillon_options ${ARG_USES}
        PRIVATE quillon_build_kind ${ARG_PRIVATELY_USES})
endfunction()

# quillon_embed(HEADER FILES...)
# Makes generated/HEADER: a row {"name", R"template(text)template"}, for each file, to be included in a table.
function(quillon_embed header)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${ARGN})
    set(rows "")
    foreach(path IN LISTS ARGN)
        get_filename_component(name "${path}" NAME)
        file(READ "${path}" text)
        string(APPEND rows "    {\"${name}\", R\"template(${text})template\"},\n")
    endforeach()
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/generated/${header} CONTENT "@rows@" @ONLY)
endfunction()

# quillon_test(NAME SOURCES ... USES ... [COST N] [ASKING_OTHERS PATTERN])
# A GoogleTest program. CTest runs all its cases in one process, since to start one for each takes
# longer than most of them; the release build runs them in another order than they are written in, so
# that none can rely on those before it. COST says that it takes long, and how long beside others: it
# begins first and, but for Windows, is cut into several parts, which run side by side. PATTERN names
# the cases that ask programs which Windows does not have; they are left out there.
function(quillon_test name)
    cmake_parse_arguments(ARG "" "COST;ASKING_OTHERS" "SOURCES;USES" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE quillon_options ${ARG_USES} GTest::gtest_main GTest::gmock)
    # Compiles nearly as fast as no optimisation. Without it what the standard library's templates are made
    # into here, which the linker takes for the libraries under test as well, is several times as slow.
    target_compile_options(${name} PRIVATE -Og)
    if(WIN32)
        # All files at once; the usual kind of object has no room for what that makes.
        set_target_properties(${name} PROPERTIES UNITY_BUILD_BATCH_SIZE 0)
        target_compile_options(${name} PRIVATE -Wa,-mbig-obj)
    endif()
    set(options --gtest_brief=1)
    if(WIN32 AND ARG_ASKING_OTHERS)
        list(APPEND options --gtest_filter=-${ARG_ASKING_OTHERS})
    endif()
    if(NOT QUILLON_SANITIZE AND NOT WIN32)
        list(APPEND options --gtest_shuffle --gtest_random_seed=1)
    endif()
    set(parts 1)
    if(NOT ARG_COST)
        set(ARG_COST 10)
    elseif(NOT WIN32)
        set(parts 4)
    endif()
    foreach(part RANGE 1 ${parts})
        set(test ${name})
        if(parts GREATER 1)
            string(APPEND test .${part}of${parts})
        endif()
        math(EXPR index "${part} - 1")
        add_test(NAME ${test} COMMAND ${name} ${options})
        set_tests_properties(${test} PROPERTIES TIMEOUT 900 COST ${ARG_COST}
            ENVIRONMENT "GTEST_TOTAL_SHARDS=${parts};GTEST_SHARD_INDEX=${index}")
    endforeach()
endfunction()

# quillon_script_test(NAME SCRIPT [ARGUMENTS ...] [TIMEOUT SECONDS] [COST N] [RELEASE_ONLY])
# A test written in Python. COST says which are long: they begin first, so that the others run beside
# them. RELEASE_ONLY: nothing of ours runs in it that another test does not run under the sanitizers.
function(quillon_script_test name script)
    cmake_parse_arguments(ARG "RELEASE_ONLY" "TIMEOUT;COST" "ARGUMENTS" ${ARGN})
    if(ARG_RELEASE_ONLY AND QUILLON_SANITIZE)
        return()
    endif()
    add_test(NAME ${name}
        COMMAND ${QUILLON_PYTHON} ${CMAKE_CURRENT_SOURCE_DIR}/${script} ${ARG_ARGUMENTS})
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 600)
    endif()
    set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT})
    if(ARG_COST)
        set_tests_properties(${name} PROPERTIES COST ${ARG_COST})
    endif()
    if(QUILLON_SANITIZE)
        set_tests_properties(${name} PROPERTIES ENVIRONMENT QUILLON_SANITIZED=1)
    endif()
endfunction()
