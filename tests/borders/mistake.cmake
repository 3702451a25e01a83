# Compiles FILE, whose first line names the sentence that the compiler must give.
file(STRINGS ${FILE} first LIMIT_COUNT 1)
string(REGEX REPLACE "^// expect: " "" sentence "${first}")
execute_process(COMMAND ${COMPILER} -std=c++20 -fsyntax-only -I${INCLUDE} ${FILE}
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(result EQUAL 0)
    message(FATAL_ERROR "It compiles: ${FILE}")
endif()
# Compilers break a long text into pieces.
string(REPLACE "\"\n" "" output "${output}")
string(FIND "${output}" "${sentence}" place)
if(place EQUAL -1)
    message(FATAL_ERROR "Not told: ${sentence}\n${output}")
endif()
string(REGEX MATCHALL "error:" errors "${output}")
list(LENGTH errors count)
if(count GREATER 1)
    message(FATAL_ERROR "More than the one sentence (${count} errors):\n${output}")
endif()
