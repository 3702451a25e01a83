cmake_minimum_required(VERSION 3.25)

# Runs PROGRAM on the session and compares what it answers.
execute_process(COMMAND ${PROGRAM} INPUT_FILE session.txt
                RESULT_VARIABLE code OUTPUT_VARIABLE answered ERROR_VARIABLE answered)
file(READ answers.txt expected)
if(NOT code EQUAL 0)
    message(SEND_ERROR "exit code ${code}")
endif()
if(NOT answered STREQUAL expected)
    message(SEND_ERROR "answered other than answers.txt:\n${answered}")
endif()
