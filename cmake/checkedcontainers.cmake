# Tells the headers, and with them every consumer, whether the library is built with
# _GLIBCXX_DEBUG. include/zintar/export.h refuses who does it otherwise.

string(TOUPPER "${CMAKE_BUILD_TYPE}" config)
get_directory_property(definitions COMPILE_DEFINITIONS)
get_directory_property(options COMPILE_OPTIONS)
set(zintar_definitions "")
if("${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${config}} ${definitions} ${options} "
   MATCHES "_GLIBCXX_DEBUG[^_A-Z]")
    set(zintar_definitions ZT_BUILT_WITH_GLIBCXX_DEBUG)
endif()
target_compile_definitions(zintar_objects PUBLIC ${zintar_definitions})
target_compile_definitions(zintar PUBLIC ${zintar_definitions})
list(TRANSFORM zintar_definitions PREPEND " -D" OUTPUT_VARIABLE pc_definitions)
