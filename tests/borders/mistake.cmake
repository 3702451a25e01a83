# Compiles FILE with CASE defined. What stands behind `#ifdef CASE // expect: ` is the sentence that
# the compiler must give first, and alone, in an output of at most 12 lines. `expect at length`
# allows more lines and errors behind it, where the compiler itself has something to say.
# A CASE of NO_MISTAKE must compile, so that no other fails for another reason.
execute_process(COMMAND ${COMPILER} -std=c++20 -fsyntax-only -D${CASE} -I${INCLUDE} ${FILE}
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(CASE STREQUAL "NO_MISTAKE")
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "It does not compile without a mistake:\n${output}")
    endif()
    return()
endif()
if(result EQUAL 0)
    message(FATAL_ERROR "It compiles.")
endif()

file(STRINGS ${FILE} line REGEX "[ (]${CASE}\\)? // expect")
string(REGEX MATCH "// expect([a-z ]*): (.*)$" line "${line}")
set(length "${CMAKE_MATCH_1}")
set(sentence "${CMAKE_MATCH_2}")
string(FIND "${output}" "error: " place)
string(SUBSTRING "${output}" ${place} -1 first)
string(FIND "${first}" "\n" end)
string(SUBSTRING "${first}" 0 ${end} first)
string(FIND "${first}" "${sentence}" place)
if(place EQUAL -1)
    message(FATAL_ERROR "Not told first: ${sentence}\n${output}")
endif()
if(NOT length STREQUAL " at length")
    # The macro that a case puts its list into is not what a host writes.
    string(REGEX REPLACE "[^\n]*expanded from macro 'MEMBERS'\n[^\n]*\n[^\n]*\n" "" output
        "${output}")
    string(REGEX MATCHALL "error: " errors "${output}")
    list(LENGTH errors errors)
    string(REGEX MATCHALL "\n" lines "${output}")
    list(LENGTH lines lines)
    if(errors GREATER 1 OR lines GREATER 12)
        message(FATAL_ERROR "${errors} errors in ${lines} lines:\n${output}")
    endif()
endif()
