cmake_minimum_required(VERSION 3.25)

# Ctrl-C ends PROGRAM orderly: all that was measured has been noted, on every bench.
execute_process(COMMAND timeout --preserve-status -s INT 1 ${PROGRAM}
                RESULT_VARIABLE code OUTPUT_VARIABLE printed ERROR_VARIABLE printed)
if(NOT code EQUAL 0 OR NOT printed MATCHES "^stopped by Ctrl-C\n")
    message(SEND_ERROR "exit code ${code}: ${printed}")
endif()
string(REGEX MATCHALL "measured [1-9][0-9]*, noted [0-9]+" benches "${printed}")
list(LENGTH benches count)
if(NOT count EQUAL 3)
    message(SEND_ERROR "tells of ${count} benches that were measured:\n${printed}")
endif()
foreach(bench IN LISTS benches)
    if(NOT bench MATCHES "^measured ([0-9]+), noted ([0-9]+)$" OR
       NOT CMAKE_MATCH_1 EQUAL CMAKE_MATCH_2)
        message(SEND_ERROR "something was lost:\n${printed}")
    endif()
endforeach()
