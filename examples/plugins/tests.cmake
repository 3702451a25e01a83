# What each run prints is kept in cases/. The plugins lie where the program is run.

# arguments  of the program, as one list
function(plugins_prints test exitCode)
    add_test(NAME plugins_${test}
             COMMAND ${CMAKE_COMMAND} -D PROGRAM=$<TARGET_FILE:plugins> -D "ARGUMENTS=${ARGN}"
                     -D EXIT_CODE=${exitCode}
                     -D EXPECTED=${CMAKE_CURRENT_SOURCE_DIR}/cases/${test}.txt
                     -P ${CMAKE_CURRENT_SOURCE_DIR}/../checkoutput.cmake
             WORKING_DIRECTORY $<TARGET_FILE_DIR:plugins_climate>)
endfunction()

plugins_prints(wired 0 ./climate.so ./lights.so
    "new climate::Thermometer hall" "new Heater stove 19.5" "new Lamp light"
    "connect hall.measured stove.follow" "connect stove.switched light.turn"
    "set stove.mode Economy" "set hall.celsius 17" show
    "call stove.boost" "set hall.celsius 19.5" show)
plugins_prints(mistakes 1 ./climate.so
    "new Fan fan" "new Heater stove warm" "new Heater stove"
    "set stove.mode Ful" "set stove.target warm" "set stove.on true" "set stove.level 1"
    "call stove.boost much" "call stove.explode" "call oven.boost"
    "new Thermometer hall" "connect hall.measured stove.boost" "connect hall.cooled stove.follow"
    "connect stove.switched stove.follow" dance)
plugins_prints(broken 1 ./broken.so ./missing.so ./lights.so "new Lamp light" show)
plugins_prints(samename 0 ./lights.so ./morelights.so classes "new lights::Lamp light"
    "new Lantern lantern" show)
plugins_prints(usage 2)
