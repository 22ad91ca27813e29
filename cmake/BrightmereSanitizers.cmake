# Sanitizer and fuzzing builds, both off by default.
#
# BRIGHTMERE_SANITIZE lists sanitizers for -fsanitize= ("address,undefined"
# or "thread") and applies them to every target of the build. Any runtime
# error stops the program, so a test that triggers one fails. The tests then
# run with the suppressions in tests/sanitizers (leaks and races inside Qt's
# own, uninstrumented libraries, not in the kit).
#
# BRIGHTMERE_BUILD_FUZZERS builds the libFuzzer targets of tests/fuzz; it
# needs clang and implies "address,undefined" unless told otherwise.

if(BRIGHTMERE_BUILD_FUZZERS)
    if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        message(FATAL_ERROR "BRIGHTMERE_BUILD_FUZZERS needs clang (libFuzzer comes with it): "
                            "configure with -DCMAKE_CXX_COMPILER=clang++")
    endif()
    if(NOT BRIGHTMERE_SANITIZE)
        set(BRIGHTMERE_SANITIZE "address,undefined" CACHE STRING "Sanitizers for every target" FORCE)
    endif()
    # Coverage for the fuzzer in every library; the fuzzer's main only where it is linked.
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()

if(BRIGHTMERE_SANITIZE)
    if(NOT CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
        message(FATAL_ERROR "BRIGHTMERE_SANITIZE needs g++ or clang")
    endif()
    if(BRIGHTMERE_SANITIZE MATCHES "thread" AND BRIGHTMERE_SANITIZE MATCHES "address")
        message(FATAL_ERROR "BRIGHTMERE_SANITIZE: thread and address cannot be combined")
    endif()
    add_compile_options(-fsanitize=${BRIGHTMERE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${BRIGHTMERE_SANITIZE})
    message(STATUS "Sanitizers: ${BRIGHTMERE_SANITIZE}")
endif()
