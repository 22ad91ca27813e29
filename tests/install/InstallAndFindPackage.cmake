# cmake -DBUILD_DIR=... -DHOST_SOURCE_DIR=... -DWORK_DIR=... -DGENERATOR=... -P InstallAndFindPackage.cmake

file(REMOVE_RECURSE "${WORK_DIR}")
set(prefix "${WORK_DIR}/prefix")
set(host_build "${WORK_DIR}/host-build")

function(run step)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${step} failed (${result}):\n${out}\n${err}")
    endif()
    message(STATUS "${step}: ok")
    set(last_output "${out}" PARENT_SCOPE)
endfunction()

run("install the kit" ${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${prefix}")
foreach(header core/BMLogger.h platform/foundation/UserDefaults.h resources/FrameworkBundle.h)
    if(NOT EXISTS "${prefix}/include/Brightmere/${header}")
        message(FATAL_ERROR "installed headers lack ${header}")
    endif()
endforeach()
# A kit built with sanitizers needs their runtimes in the host too.
set(host_options "-DCMAKE_CXX_COMPILER=${HOST_CXX_COMPILER}")
if(HOST_SANITIZE)
    list(APPEND host_options "-DCMAKE_CXX_FLAGS=-fsanitize=${HOST_SANITIZE}")
endif()
run("configure the host" ${CMAKE_COMMAND} -S "${HOST_SOURCE_DIR}" -B "${host_build}" -G "${GENERATOR}"
    "-DCMAKE_PREFIX_PATH=${prefix}" ${host_options})
run("build the host" ${CMAKE_COMMAND} --build "${host_build}")
run("run the host" "${host_build}/brightmere_host")
if(NOT last_output MATCHES "BrightmereMobileSDKUI [0-9]+\\.[0-9]+\\.[0-9]+")
    message(FATAL_ERROR "the host printed an unexpected line: ${last_output}")
endif()
file(REMOVE_RECURSE "${WORK_DIR}")
