# Fails when a file of access, cop, tcp or base, or of the facade, includes a Qt header, directly or not. Only
# base/Assertion.h may.
#   cmake -D CXX=COMPILER -D QT_FOLDERS=FOLDER;... -D SOURCES=src -P NoQt.cmake
# SPDX-License-Identifier: MIT
cmake_minimum_required(VERSION 3.25)
file(GLOB files ${SOURCES}/CANopenAccess.* ${SOURCES}/access/*.cpp ${SOURCES}/access/*.h ${SOURCES}/cop/*.cpp
    ${SOURCES}/cop/*.h ${SOURCES}/tcp/*.cpp ${SOURCES}/tcp/*.h ${SOURCES}/base/*.h)
list(REMOVE_ITEM files ${SOURCES}/base/Assertion.h)
list(LENGTH files number)
if(number LESS 10)
    message(FATAL_ERROR "only ${number} files in ${SOURCES}: have the rooms moved?")
endif()

list(TRANSFORM QT_FOLDERS PREPEND -I)
set(wrong "")
foreach(file IN LISTS files)
    execute_process(COMMAND ${CXX} -std=c++20 -fPIC -I${SOURCES} ${QT_FOLDERS} -M -x c++ ${file}
        OUTPUT_VARIABLE included ERROR_VARIABLE error RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${file}: ${error}")
    endif()
    if(included MATCHES "[^ \n]*/(qt6|Qt[A-Z][A-Za-z]*)/[^ \n]*")
        string(APPEND wrong "${file} sees ${CMAKE_MATCH_0}\n")
    endif()
endforeach()
if(wrong)
    message(FATAL_ERROR "${wrong}")
endif()
message(STATUS "${number} files see no Qt header")
