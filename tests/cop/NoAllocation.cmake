# Fails when the static library LIBRARY calls anything that takes memory from the heap or frees it. NM lists symbols.
# SPDX-License-Identifier: MIT
execute_process(COMMAND ${NM} -u ${LIBRARY} OUTPUT_VARIABLE symbols RESULT_VARIABLE result)
# Both libraries call `socket`: if nm does not list it, its output is not what they call.
if(NOT result EQUAL 0 OR NOT symbols MATCHES " U socket\n")
    message(FATAL_ERROR "cannot tell what ${LIBRARY} calls: ${result}")
endif()
set(calls "malloc|calloc|realloc|reallocarray|free|aligned_alloc|posix_memalign|memalign|strdup|strndup|v?asprintf")
string(REGEX MATCHALL " U (${calls}|_Zn[wa][A-Za-z0-9_]*|_Zd[la][A-Za-z0-9_]*)\n" found "${symbols}")
if(found)
    message(FATAL_ERROR "${LIBRARY} uses the heap: ${found}")
endif()
