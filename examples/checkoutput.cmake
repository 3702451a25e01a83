cmake_minimum_required(VERSION 3.25)

# Runs PROGRAM with ARGUMENTS, or with what the file INPUT has for it to read, and compares what it
# prints with the file EXPECTED.
if(INPUT)
    set(input INPUT_FILE ${INPUT})
endif()
execute_process(COMMAND ${PROGRAM} ${ARGUMENTS} ${input}
                RESULT_VARIABLE code OUTPUT_VARIABLE printed ERROR_VARIABLE printed)
file(READ ${EXPECTED} expected)
if(NOT code EQUAL EXIT_CODE)
    message(SEND_ERROR "exit code ${code} where ${EXIT_CODE} was expected")
endif()
if(NOT printed STREQUAL expected)
    message(SEND_ERROR "printed other than ${EXPECTED}:\n${printed}")
endif()
