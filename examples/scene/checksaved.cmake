cmake_minimum_required(VERSION 3.25)

# Saves a scene with SCENE, brings it back in another process, and saves it from there: the tree is
# the one that the first process had in the end, and the bytes are the same. Then whatever the file
# is cut off to is told in one line.
set(saved ${FOLDER}/workshop.saved)
set(again ${FOLDER}/workshop-again.saved)
set(cut ${FOLDER}/workshop-cut.saved)

# Leaves what was printed on standard output and standard error in `printed` and `told`.
function(run_scene exitCode)
    execute_process(COMMAND ${SCENE} ${ARGN}
                    RESULT_VARIABLE code OUTPUT_VARIABLE output ERROR_VARIABLE errors)
    if(NOT code EQUAL exitCode)
        message(FATAL_ERROR "${ARGN}: exit code ${code} where ${exitCode} was expected\n${errors}")
    endif()
    set(printed "${output}" PARENT_SCOPE)
    set(told "${errors}" PARENT_SCOPE)
endfunction()

# The lines of `printed` between the one that is `title` and the next empty one.
function(tree_after title)
    string(REGEX MATCH "(^|\n)${title}\n[^\n]+(\n[^\n]+)*" section "${printed}")
    string(REGEX REPLACE "^\n*${title}\n" "" section "${section}")
    string(LENGTH "${section}" length)
    if(length LESS 100)
        message(FATAL_ERROR "no tree below ${title} in\n${printed}")
    endif()
    set(tree "${section}" PARENT_SCOPE)
endfunction()

foreach(scene workshop.json greenhouse.json)
    run_scene(0 ${scene} --save ${saved})
    tree_after(After)
    set(before "${tree}")
    run_scene(0 --load ${saved} --save ${again})
    tree_after(Loaded)
    if(NOT tree STREQUAL before)
        message(SEND_ERROR "${scene}: saved\n${before}\nand loaded\n${tree}")
    endif()
    file(SHA256 ${saved} first)
    file(SHA256 ${again} second)
    if(NOT first STREQUAL second)
        message(SEND_ERROR "${scene}: what was loaded is saved in other bytes")
    endif()
endforeach()

run_scene(0 --classes workshop.json)
set(classes "${printed}")
run_scene(0 workshop.json --save ${saved})
run_scene(0 --classes --load ${saved})
if(NOT printed STREQUAL classes)
    message(SEND_ERROR "the classes come back as\n${printed}")
endif()

file(SIZE ${saved} size)
foreach(length RANGE 0 ${size} 53)
    execute_process(COMMAND head -c ${length} ${saved} OUTPUT_FILE ${cut})
    run_scene(2 --load ${cut})
    if(NOT told MATCHES "^${cut}: [^\n]+: [^\n]+\n$" OR NOT printed STREQUAL "")
        message(SEND_ERROR "cut off at ${length}: printed ${printed}and told ${told}")
    endif()
endforeach()
