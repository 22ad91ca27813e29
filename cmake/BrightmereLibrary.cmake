# brightmere_add_library(<target> EXPORT_NAME <name>)
#
# Makes one of the kit's shared libraries with its Brightmere:: ALIAS, the
# include root src/, whose headers are all under src/Brightmere/ and are
# included as <Brightmere/area/Class.h> (installed under include/), and install rules
# in the package's export set. Areas add their files with
# brightmere_target_sources(), so each folder lists only its own classes.
function(brightmere_add_library target)
    cmake_parse_arguments(ARG "" "EXPORT_NAME" "" ${ARGN})
    add_library(${target} SHARED)
    add_library(Brightmere::${ARG_EXPORT_NAME} ALIAS ${target})
    set_target_properties(${target} PROPERTIES
        EXPORT_NAME ${ARG_EXPORT_NAME}
        VERSION ${PROJECT_VERSION}
        # Every release may change the installed classes' layout (see the
        # package's version file), so the ABI name is the whole version.
        SOVERSION ${PROJECT_VERSION})
    target_include_directories(${target} PUBLIC
        $<INSTALL_INTERFACE:${BRIGHTMERE_INCLUDE_DIR}>)
    target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR}/src)
    install(TARGETS ${target} EXPORT ${BRIGHTMERE_EXPORT_NAME}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        FILE_SET HEADERS DESTINATION ${BRIGHTMERE_INCLUDE_DIR})
    # Deferred arguments are expanded only when the call runs: pass the name as text.
    cmake_language(EVAL CODE
        "cmake_language(DEFER DIRECTORY [[${PROJECT_SOURCE_DIR}]] CALL _brightmere_refresh_autogen [[${target}]])")
endfunction()

# With Ninja, moc's step reruns only when a file it saw last time changes, so
# a class added to an area's list would never be moc'ed in an existing build
# tree. When a library's file list changes, drop the step's stamp so it runs.
function(_brightmere_refresh_autogen target)
    get_target_property(sources ${target} SOURCES)
    get_target_property(headers ${target} HEADER_SET)
    get_target_property(binary_dir ${target} BINARY_DIR)
    string(SHA1 hash "${sources};${headers}")
    set(record "${binary_dir}/CMakeFiles/${target}_sources.sha1")
    if(EXISTS "${record}")
        file(READ "${record}" previous)
        if(NOT previous STREQUAL hash)
            file(REMOVE "${binary_dir}/${target}_autogen/timestamp")
        endif()
    endif()
    file(WRITE "${record}" "${hash}")
endfunction()

# brightmere_target_sources(<target> [PUBLIC <Class> ...] [PRIVATE <Class> ...])
#
# Adds <Class>.h and <Class>.cpp, when it exists, from the calling folder for
# every class named. PUBLIC headers are the package's: installed, and so
# never including a PRIVATE one (tst_InstallAndFindPackage compiles each on
# its own against the installed prefix). PRIVATE headers stay in the tree.
function(brightmere_target_sources target)
    set(scope "")
    foreach(word IN LISTS ARGN)
        if(word STREQUAL "PUBLIC" OR word STREQUAL "PRIVATE")
            set(scope ${word})
            continue()
        endif()
        if(scope STREQUAL "")
            message(FATAL_ERROR "brightmere_target_sources(${target}): say PUBLIC or PRIVATE before ${word}")
        endif()
        if(scope STREQUAL "PUBLIC")
            target_sources(${target} PUBLIC FILE_SET HEADERS FILES ${CMAKE_CURRENT_SOURCE_DIR}/${word}.h)
        else()
            target_sources(${target} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/${word}.h)
        endif()
        if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${word}.cpp)
            target_sources(${target} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/${word}.cpp)
        endif()
    endforeach()
endfunction()
