cmake_minimum_required(VERSION 3.25)

# Runs DUMP with ARGUMENTS, on INPUT if there is one, and compares what it prints with the file
# EXPECTED. With UPDATE in the environment it writes that file instead.
set(input)
if(INPUT)
    set(input INPUT_FILE ${INPUT})
endif()
execute_process(COMMAND ${DUMP} ${ARGUMENTS} ${input}
                RESULT_VARIABLE code OUTPUT_VARIABLE printed ERROR_VARIABLE told)
string(APPEND printed "${told}")
if(NOT code EQUAL EXIT_CODE)
    message(SEND_ERROR "exit code ${code} where ${EXIT_CODE} was expected\n${printed}")
endif()
if(DEFINED ENV{UPDATE})
    file(WRITE ${EXPECTED} "${printed}")
    return()
endif()
file(READ ${EXPECTED} expected)
if(NOT printed STREQUAL expected)
    message(SEND_ERROR "printed other than ${EXPECTED}:\n${printed}")
endif()
