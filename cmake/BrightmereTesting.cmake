# brightmere_add_test(<tst_Name> [LINK <targets>...] [SOURCES <extra>...])
#
# One Qt Test executable from tst_Name.cpp in the calling folder, run by CTest
# headless, in its own temporary home so no test touches the user's real
# defaults or caches.
function(brightmere_add_test name)
    cmake_parse_arguments(ARG "" "TIMEOUT" "LINK;SOURCES" ${ARGN})
    add_executable(${name} ${name}.cpp ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE ${ARG_LINK} BrightmereTestSupport Qt6::Test)
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 60)
    endif()
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES
        TIMEOUT ${ARG_TIMEOUT}
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endfunction()
