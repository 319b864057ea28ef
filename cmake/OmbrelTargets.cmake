# Settings that every target shares, and the two kinds of target the project is made of.

set(CMAKE_CXX_STANDARD 23)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

find_program(CCACHE ccache)
if(CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
    set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE})
endif()

add_library(ombrel_options INTERFACE)
target_compile_options(ombrel_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
    -Woverloaded-virtual -Wimplicit-fallthrough -Werror)
target_compile_definitions(ombrel_options INTERFACE _FILE_OFFSET_BITS=64 QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII
    QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_NO_FOREACH)
if(OMBREL_SANITIZE)
    target_compile_options(ombrel_options INTERFACE -fsanitize=${OMBREL_SANITIZE} -fno-omit-frame-pointer
        -fno-sanitize-recover=all -g1)
    target_link_options(ombrel_options INTERFACE -fsanitize=${OMBREL_SANITIZE})
    # GCC's flow warnings report false positives in instrumented code.
    target_compile_options(ombrel_options INTERFACE -Wno-maybe-uninitialized -Wno-stringop-overflow
        -Wno-array-bounds -Wno-restrict -Wno-nonnull -Wno-null-dereference)
endif()

# The moc of Qt 6.4 stumbles over <compare> of libstdc++ 12 and has no use for it; this is its include guard.
set(CMAKE_AUTOMOC_MOC_OPTIONS -D_COMPARE)

# Has the moc look again after each configuration: a header that is new changes nothing that its rule depends on.
function(ombrel_renew_moc target)
    file(REMOVE ${CMAKE_CURRENT_BINARY_DIR}/${target}_autogen/timestamp)
endfunction()

# ombrel_kit(<folder> [MOC] LINK <targets>...)
# One static library for one folder of kit/; the files are whatever the folder holds.
function(ombrel_kit folder)
    cmake_parse_arguments(ARG "MOC" "" "LINK" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp
        ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.h)
    if(NOT sources)
        add_library(ombrel_${folder} INTERFACE)
        target_link_libraries(ombrel_${folder} INTERFACE ${ARG_LINK})
        return()
    endif()
    add_library(ombrel_${folder} STATIC ${sources})
    target_include_directories(ombrel_${folder} PUBLIC ${PROJECT_SOURCE_DIR}/kit)
    target_link_libraries(ombrel_${folder} PRIVATE ombrel_options PUBLIC ${ARG_LINK})
    if(OMBREL_SANITIZE AND folder MATCHES "^(browser|ui)$")
        # Nothing here is slow enough to be worth the time that optimizing instrumented code takes.
        target_compile_options(ombrel_${folder} PRIVATE -O0)
    endif()
    set_target_properties(ombrel_${folder} PROPERTIES LINKER_LANGUAGE CXX AUTOMOC ${ARG_MOC})
    ombrel_renew_moc(ombrel_${folder})
endfunction()

add_custom_target(all_tests)

# ombrel_test(<folder> LINK <targets>...)
# One test program for tests/<folder>, named test_<folder>.
function(ombrel_test folder)
    cmake_parse_arguments(ARG "MOC" "" "LINK" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp
        ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.h)
    if(NOT sources)
        return()
    endif()
    add_executable(test_${folder} ${sources})
    if(OMBREL_SANITIZE)
        # Optimizing the instrumented matchers takes longer than all else together and checks nothing more.
        target_compile_options(test_${folder} PRIVATE -O0)
    endif()
    target_link_libraries(test_${folder} PRIVATE ombrel_options ${ARG_LINK} ombrel_test_support GTest::gmock)
    set_target_properties(test_${folder} PROPERTIES AUTOMOC ${ARG_MOC})
    ombrel_renew_moc(test_${folder})
    add_test(NAME test_${folder} COMMAND test_${folder})
    add_dependencies(all_tests test_${folder})
endfunction()
