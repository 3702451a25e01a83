# cmake -D PAGE=docs/values.md -D ROOT=... -D OUTPUT=values.cpp -P extract.cmake
#
# Makes a program of the C++ in a page:
#   ```cpp        stands outside of functions; one with an int main() is run as well
#   ```cpp run    statements, run in a scope of their own
#   ```text       what the block before it prints when it is run; without one it prints nothing
# Other blocks are left alone.

file(READ ${ROOT}/${PAGE} rest)
string(APPEND rest "\n") # the last line may lack it
set(code "#include \"page.h\"\n")
set(table "")
set(number 0)   # of the line
set(kind "")    # of the block that is open, or empty
set(pending "") # the line of the last block that is run, until its output is known, or empty

# The macros take no arguments: those would be substituted into them as code.

macro(fail message)
    message(FATAL_ERROR "${PAGE}:${number}: ${message}")
endmacro()

# The pending block prints `output`.
macro(settle_pending)
    if(pending)
        string(APPEND table "    {${pending}, &block_${pending}, R\"page(${output})page\"},\n")
    endif()
    set(pending "")
endmacro()

macro(open_block)
    set(start ${number})
    set(block "")
    if(kind STREQUAL "text")
        if(NOT pending)
            fail("the block before this output is not run")
        endif()
    else()
        set(output "")
        settle_pending()
    endif()
    if(kind MATCHES "^cpp" AND NOT kind MATCHES "^cpp( run)?$")
        fail("there are blocks of `cpp` and of `cpp run`, no others of `cpp`")
    endif()
endmacro()

macro(close_block)
    math(EXPR first "${start} + 1")
    set(place "#line ${first} \"${PAGE}\"\n")
    set(head "static void block_${start}()")
    if(kind STREQUAL "text")
        set(output "${block}")
        settle_pending()
    elseif(kind STREQUAL "cpp run")
        string(APPEND code "${head}\n{\n${place}${block}}\n")
        set(pending ${start})
    elseif(kind STREQUAL "cpp")
        if(block MATCHES "int main\\(\\)")
            string(REPLACE "int main()" "${head}" block "${block}")
            set(pending ${start})
        endif()
        string(APPEND code "${place}${block}")
    endif()
    set(kind "")
endmacro()

while(NOT rest STREQUAL "")
    string(FIND "${rest}" "\n" end)
    string(SUBSTRING "${rest}" 0 ${end} line)
    math(EXPR end "${end} + 1")
    string(SUBSTRING "${rest}" ${end} -1 rest)
    math(EXPR number "${number} + 1")

    if(line MATCHES "^ +```")
        fail("a block begins at the start of its line")
    elseif(line MATCHES "^```(.*)$")
        if(kind STREQUAL "")
            set(kind "plain${CMAKE_MATCH_1}")
            string(REGEX REPLACE "^plain(.+)" "\\1" kind "${kind}")
            open_block()
        else()
            close_block()
        endif()
    elseif(NOT kind STREQUAL "")
        string(APPEND block "${line}\n")
    endif()
endwhile()
if(NOT kind STREQUAL "")
    fail("the last block has no end")
endif()
set(output "")
settle_pending()

string(APPEND code "#line 1 \"main\"\n"
    "int main()\n{\n    return runPage(\"${PAGE}\", {\n${table}    });\n}\n")
file(WRITE ${OUTPUT} "${code}")
