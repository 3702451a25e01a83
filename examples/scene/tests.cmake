# What the program prints is kept beside what it is given. The names of the files are in its
# messages, so each run starts here.

# arguments  of the program, as one list
# expected   the file with all that the run prints, the line of a mistake last
function(scene_prints test arguments exitCode expected)
    add_test(NAME scene_${test}
             COMMAND ${CMAKE_COMMAND} -D PROGRAM=$<TARGET_FILE:scene> -D "ARGUMENTS=${arguments}"
                     -D EXIT_CODE=${exitCode} -D EXPECTED=${expected} -P ../checkoutput.cmake
             WORKING_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR})
endfunction()

scene_prints(greenhouse greenhouse.json 0 greenhouse.txt)
scene_prints(classes --classes 0 classes.txt)
scene_prints(help --help 0 help.txt)
scene_prints(folder cases 2 cases/folder.txt)
scene_prints(usage "two.json;files.json" 2 usage.txt)

set(recorded "--record;workshop/lathe.finished;--record;lathe.turns;--record;ivy.ripened")
scene_prints(workshop "workshop.json;${recorded}" 0 workshop.txt)
scene_prints(workshop_classes "--classes;workshop.json" 0 workshopclasses.txt)
scene_prints(record_nobody "workshop.json;--record;workshop/stove.turns" 2 cases/recordnobody.txt)

# Who hears of a step of a declared method may delete the object: the method ends with it.
scene_prints(felled cases/felled.json 0 cases/felled.txt)
# A change event may carry nothing, and an argument may be left out.
scene_prints(quiet cases/quiet.json 0 cases/quiet.txt)

# What one process saves, another one brings back, and the tool shows.
if(ZINTAR_BUILD_TOOLS)
    set(dump $<TARGET_FILE:zintar-dump>)
endif()
add_test(NAME scene_saved
         COMMAND ${CMAKE_COMMAND} -D SCENE=$<TARGET_FILE:scene> -D "DUMP=${dump}"
                     -D FOLDER=${CMAKE_CURRENT_BINARY_DIR} -P checksaved.cmake
         WORKING_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR})

# Mistakes that show only while the actions are carried out.
scene_prints(late_circle late/circle.json 2 late/circle.txt)
scene_prints(late_harvested late/harvested.json 2 late/harvested.txt)

# Mistakes that are found before any object is made.
add_test(NAME scene_broken
         COMMAND ${CMAKE_COMMAND} -D SCENE=$<TARGET_FILE:scene> -P checkbroken.cmake
         WORKING_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR})
