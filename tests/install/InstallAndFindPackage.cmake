# cmake -DBUILD_DIR=... -DHOST_SOURCE_DIR=... -DWORK_DIR=... -DGENERATOR=... -P InstallAndFindPackage.cmake
cmake_policy(VERSION 3.25)

# The prefix and the host's build are kept between runs: the host compiles
# every installed header on its own (half a minute on two cores), and a run
# after a change recompiles only what the change touched.
set(fresh "${WORK_DIR}/fresh")
set(prefix "${WORK_DIR}/prefix")
set(host_build "${WORK_DIR}/host-build")
file(REMOVE_RECURSE "${fresh}")

function(run step)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${step} failed (${result}):\n${out}\n${err}")
    endif()
    message(STATUS "${step}: ok")
    set(last_output "${out}" PARENT_SCOPE)
endfunction()

run("install the kit" ${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${fresh}")
# Into the kept prefix: what the install no longer has goes, and a file the
# same as before keeps its time.
file(GLOB_RECURSE installed RELATIVE "${fresh}" LIST_DIRECTORIES false "${fresh}/*")
file(GLOB_RECURSE kept RELATIVE "${prefix}" LIST_DIRECTORIES false "${prefix}/*")
foreach(file IN LISTS kept)
    if(NOT file IN_LIST installed)
        file(REMOVE "${prefix}/${file}")
    endif()
endforeach()
foreach(file IN LISTS installed)
    get_filename_component(folder "${prefix}/${file}" DIRECTORY)
    file(MAKE_DIRECTORY "${folder}")
    file(COPY_FILE "${fresh}/${file}" "${prefix}/${file}" ONLY_IF_DIFFERENT)
endforeach()
file(REMOVE_RECURSE "${fresh}")
# What a host uses is installed; what only the kit uses is not.
foreach(header session/BMWifiScanVC.h platform/foundation/UserDefaults.h resources/FrameworkBundle.h)
    if(NOT EXISTS "${prefix}/include/Brightmere/${header}")
        message(FATAL_ERROR "installed headers lack ${header}")
    endif()
endforeach()
foreach(header core/BMSeededRandom.h platform/foundation/TaskList.h i18n/BMSubscriberDelivery.h
               session/BMWifiScanView.h)
    if(EXISTS "${prefix}/include/Brightmere/${header}")
        message(FATAL_ERROR "an internal header is installed: ${header}")
    endif()
endforeach()
# A library's dynamic symbols are its exported API: a class a host uses is
# there, a class only the kit uses is not.
find_program(NM nm REQUIRED)
foreach(check IN ITEMS "MobileSDKUI BMWifiScanVC DragTracker" "MobileSDKUI FZHistoricalResultSpotsSet FZReportFile"
                       "MobileSDK BMTesterFactory BMSeededRandom" "Foundation UserDefaults StringTable")
    separate_arguments(check)
    list(GET check 0 name)
    list(GET check 1 exported)
    list(GET check 2 internal)
    set(library "${prefix}/lib/libBrightmere${name}.so")
    execute_process(COMMAND ${NM} -D -C --defined-only "${library}" OUTPUT_VARIABLE symbols RESULT_VARIABLE result)
    if(NOT result EQUAL 0 OR NOT symbols MATCHES "[ :]${exported}::")
        message(FATAL_ERROR "${library} does not export ${exported}")
    endif()
    if(symbols MATCHES "[ :]${internal}::")
        message(FATAL_ERROR "${library} exports the internal class ${internal}")
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
if(NOT last_output MATCHES "BrightmereMobileSDKUI [0-9]+\\.[0-9]+\\.[0-9]+: saved 'Ground floor' with 1 spot")
    message(FATAL_ERROR "the host printed an unexpected line: ${last_output}")
endif()
