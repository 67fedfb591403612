# One interface target carries the language standard, the warnings and Qt's strictness; every library links it.
# SPDX-License-Identifier: MIT
option(VELMORA_WERROR "Treat warnings as errors" OFF)
option(VELMORA_SANITIZE "Build with the address and undefined-behaviour sanitizers" OFF)
option(VELMORA_SANITIZE_UNDEFINED "Build with the undefined-behaviour sanitizer alone" OFF)
option(VELMORA_FUZZ "Build with the counters that lead the fuzzers (clang only)" OFF)
option(VELMORA_COVERAGE "Build with coverage counters" OFF)
option(VELMORA_HARDENED "Build with hardening: PIE, RELRO, stack protector, _FORTIFY_SOURCE" OFF)

add_library(velmora_settings INTERFACE)
target_compile_features(velmora_settings INTERFACE cxx_std_20)
target_compile_options(velmora_settings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wcast-qual -Wold-style-cast
    -Wnon-virtual-dtor -Woverloaded-virtual -Wformat-security -Wundef -Wnull-dereference
    $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-cond;-Wlogical-op>
    $<$<BOOL:${VELMORA_WERROR}>:-Werror>)
# Tests set VELMORA_PLAIN_LITERALS: they compare texts with plain literals, and write `int(INT32_MIN)` or a copy as
# `QString(text)`. In the libraries of gcc 13 and later some functions have other types than in those of gcc 12: a cast
# that the older ones need is useless there.
set(casts_are_told $<CXX_COMPILER_ID:GNU> $<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>
    $<NOT:$<BOOL:$<TARGET_PROPERTY:VELMORA_PLAIN_LITERALS>>>)
list(JOIN casts_are_told "," casts_are_told)
target_compile_options(velmora_settings INTERFACE $<$<AND:${casts_are_told}>:-Wuseless-cast>)
target_compile_definitions(velmora_settings INTERFACE
    $<$<NOT:$<BOOL:$<TARGET_PROPERTY:VELMORA_PLAIN_LITERALS>>>:QT_NO_CAST_FROM_ASCII>
    QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_NO_FOREACH QT_NO_KEYWORDS QT_DISABLE_DEPRECATED_BEFORE=0x060400)

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

if(VELMORA_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
elseif(VELMORA_SANITIZE_UNDEFINED)
    # Not for the code of the tests, which would take long to build; VELMORA_SANITIZE covers it.
    target_compile_options(velmora_settings INTERFACE
        $<$<NOT:$<BOOL:$<TARGET_PROPERTY:VELMORA_PLAIN_LITERALS>>>:-fsanitize=undefined;-fno-sanitize-recover=all>)
    add_link_options(-fsanitize=undefined)
endif()
if(VELMORA_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(VELMORA_COVERAGE)
    add_compile_options(--coverage -fprofile-update=atomic)
    add_link_options(--coverage)
endif()
# velmora_count_branches(TARGET...): for coverage, compiles the sources that neither throw nor catch without exceptions.
# Otherwise the compiler puts branches of its own into them, which only run when there is no memory left.
function(velmora_count_branches)
    foreach(target IN LISTS ARGN)
        get_target_property(sources ${target} SOURCES)
        get_target_property(folder ${target} SOURCE_DIR)
        list(FILTER sources INCLUDE REGEX "\\.cpp$")
        foreach(source IN LISTS sources)
            file(STRINGS ${folder}/${source} throwing REGEX "throw |catch \\(|CLI/CLI.hpp|console/Interrupt.h")
            if(NOT throwing)
                set_source_files_properties(${folder}/${source} TARGET_DIRECTORY ${target} PROPERTIES
                    COMPILE_OPTIONS -fno-exceptions)
            endif()
        endforeach()
    endforeach()
endfunction()

if(CMAKE_BUILD_TYPE STREQUAL "Release")
    # What nothing calls does not get into the programs.
    add_compile_options(-ffunction-sections -fdata-sections)
    add_link_options(-Wl,--gc-sections)
endif()
if(VELMORA_HARDENED)
    include(CheckPIESupported)
    check_pie_supported()
    add_compile_options(-fstack-protector-strong -fstack-clash-protection)
    add_compile_definitions(_FORTIFY_SOURCE=2)
    add_link_options(-Wl,-z,relro,-z,now)
endif()
