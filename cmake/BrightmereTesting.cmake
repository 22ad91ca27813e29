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
    # A home of its own per test and build tree: Qt's test-mode folders live
    # under it, so two trees running the same test at once never share files.
    set(home ${CMAKE_BINARY_DIR}/test-home/${name})
    file(MAKE_DIRECTORY ${home})
    set_tests_properties(${name} PROPERTIES
        TIMEOUT ${ARG_TIMEOUT}
        ENVIRONMENT "${BRIGHTMERE_TEST_ENVIRONMENT};HOME=${home}")
endfunction()

# In a sanitizer build every test runs with the kit's suppressions (findings
# inside Qt's own libraries, which are not built with the sanitizers) and
# stops at the first report.
set(BRIGHTMERE_SANITIZER_ENVIRONMENT "")
if(BRIGHTMERE_SANITIZE)
    set(_supp ${PROJECT_SOURCE_DIR}/tests/sanitizers)
    list(APPEND BRIGHTMERE_SANITIZER_ENVIRONMENT
        "ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1:detect_stack_use_after_return=1:check_initialization_order=1"
        "LSAN_OPTIONS=suppressions=${_supp}/lsan.supp:print_suppressions=0"
        "UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1:suppressions=${_supp}/ubsan.supp"
        # Qt and the system libraries are not instrumented: only the kit's own accesses are checked.
        "TSAN_OPTIONS=suppressions=${_supp}/tsan.supp:halt_on_error=1:second_deadlock_stack=1:ignore_noninstrumented_modules=1")
    unset(_supp)
endif()
set(BRIGHTMERE_TEST_ENVIRONMENT QT_QPA_PLATFORM=offscreen ${BRIGHTMERE_SANITIZER_ENVIRONMENT})
