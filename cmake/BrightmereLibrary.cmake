# The kit's three libraries: foundation <- core stand-in <- kit.
#
# brightmere_add_library(<library> EXPORT_NAME <name> [DEPENDS <library>...])
#
# Each library is compiled once, as one or more layers (OBJECT libraries, see
# brightmere_add_layer), with every symbol hidden unless its declaration says
# <BASE>_EXPORT from the generated <Brightmere/<name>Export.h>. From those
# objects come two libraries:
#  - <library>, SHARED: the package's, with only its exported API in its
#    dynamic symbol table, installed with its PUBLIC headers under
#    include/Brightmere/ and found by hosts as Brightmere::<name>;
#  - <library>Internal, STATIC: for the project's own tests, demo,
#    benchmarks and tools, which reach classes a host does not see. They link
#    Brightmere::<name>Internal.
# Headers live under src/Brightmere/ and are included as
# <Brightmere/area/Class.h>. Areas add their files to a layer with
# brightmere_target_sources(), so each folder lists only its own classes.
function(brightmere_add_library library)
    cmake_parse_arguments(ARG "" "EXPORT_NAME" "DEPENDS" ${ARGN})
    add_library(${library} SHARED)
    add_library(Brightmere::${ARG_EXPORT_NAME} ALIAS ${library})
    add_library(${library}Internal STATIC)
    add_library(Brightmere::${ARG_EXPORT_NAME}Internal ALIAS ${library}Internal)
    set_target_properties(${library} PROPERTIES
        EXPORT_NAME ${ARG_EXPORT_NAME}
        VERSION ${PROJECT_VERSION}
        # Every release may change the installed classes' layout (see the
        # package's version file), so the ABI name is the whole version.
        SOVERSION ${PROJECT_VERSION})
    # Both are made of the layers' objects, which are moc'ed already.
    set_target_properties(${library} ${library}Internal PROPERTIES AUTOMOC OFF AUTORCC OFF)
    # A symbol the library uses but nobody exports fails here, not in a host.
    # (A sanitizer's runtime is linked only into programs, so not then.)
    if(NOT BRIGHTMERE_SANITIZE)
        target_link_options(${library} PRIVATE LINKER:--no-undefined)
    endif()

    string(TOUPPER "BRIGHTMERE_${ARG_EXPORT_NAME}" base)
    set(export_header ${PROJECT_BINARY_DIR}/include/Brightmere/${ARG_EXPORT_NAME}Export.h)
    generate_export_header(${library} BASE_NAME ${base} EXPORT_FILE_NAME ${export_header})
    target_include_directories(${library} PUBLIC $<INSTALL_INTERFACE:${BRIGHTMERE_INCLUDE_DIR}>)
    target_include_directories(${library}Internal PUBLIC ${PROJECT_SOURCE_DIR}/src ${PROJECT_BINARY_DIR}/include)
    target_sources(${library} PUBLIC FILE_SET HEADERS
        BASE_DIRS ${PROJECT_SOURCE_DIR}/src ${PROJECT_BINARY_DIR}/include
        FILES ${export_header})
    foreach(lower IN LISTS ARG_DEPENDS)
        target_link_libraries(${library} PUBLIC ${lower})
        target_link_libraries(${library}Internal PUBLIC ${lower}Internal)
    endforeach()
    install(TARGETS ${library} EXPORT ${BRIGHTMERE_EXPORT_NAME}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        FILE_SET HEADERS DESTINATION ${BRIGHTMERE_INCLUDE_DIR})
endfunction()

# brightmere_add_layer(<layer> LIBRARY <library> QT <component>...)
#
# One part of a library, compiled with the Qt modules named and no others:
# a widget or GUI include in a layer that names only Core and Network does
# not compile. Its objects go into both forms of the library.
function(brightmere_add_layer layer)
    cmake_parse_arguments(ARG "" "LIBRARY" "QT" ${ARGN})
    add_library(${layer} OBJECT)
    set_target_properties(${layer} PROPERTIES
        POSITION_INDEPENDENT_CODE ON
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        BRIGHTMERE_LIBRARY ${ARG_LIBRARY})
    target_include_directories(${layer} PUBLIC ${PROJECT_SOURCE_DIR}/src ${PROJECT_BINARY_DIR}/include)
    # The objects end up in the shared library: mark its symbols as exported.
    target_compile_definitions(${layer} PRIVATE ${ARG_LIBRARY}_EXPORTS)
    list(TRANSFORM ARG_QT PREPEND Qt6::)
    target_link_libraries(${layer} PUBLIC ${ARG_QT})
    target_link_libraries(${ARG_LIBRARY} PUBLIC ${ARG_QT})
    target_link_libraries(${ARG_LIBRARY}Internal PUBLIC ${ARG_QT})
    target_sources(${ARG_LIBRARY} PRIVATE $<TARGET_OBJECTS:${layer}>)
    target_sources(${ARG_LIBRARY}Internal PRIVATE $<TARGET_OBJECTS:${layer}>)
    # Deferred arguments are expanded only when the call runs: pass the name as text.
    cmake_language(EVAL CODE
        "cmake_language(DEFER DIRECTORY [[${PROJECT_SOURCE_DIR}]] CALL _brightmere_refresh_autogen [[${layer}]])")
endfunction()

# brightmere_add_resources(<library> <name> FILES <file>...)
#
# Bundles files into both forms of a library under ":/". The static form
# hands its resources to whatever links it, so no program loses them.
function(brightmere_add_resources library name)
    foreach(target IN ITEMS ${library} ${library}Internal)
        qt_add_resources(${target} ${name} PREFIX "/" ${ARGN})
    endforeach()
endfunction()

# With Ninja, moc's step reruns only when a file it saw last time changes, so
# a class added to an area's list would never be moc'ed in an existing build
# tree. When a layer's file list changes, drop the step's stamp so it runs.
function(_brightmere_refresh_autogen target)
    get_target_property(sources ${target} SOURCES)
    get_target_property(binary_dir ${target} BINARY_DIR)
    string(SHA1 hash "${sources}")
    set(record "${binary_dir}/CMakeFiles/${target}_sources.sha1")
    if(EXISTS "${record}")
        file(READ "${record}" previous)
        if(NOT previous STREQUAL hash)
            file(REMOVE "${binary_dir}/${target}_autogen/timestamp")
        endif()
    endif()
    file(WRITE "${record}" "${hash}")
endfunction()

# brightmere_target_sources(<layer> [PUBLIC <Class> ...] [PRIVATE <Class> ...])
#
# Adds <Class>.h and <Class>.cpp, when it exists, from the calling folder to
# the layer for every class named. PUBLIC headers are the package's:
# installed with the layer's library, and so never including a PRIVATE one
# (tst_InstallAndFindPackage compiles each on its own against the installed
# prefix). PRIVATE headers stay in the tree.
function(brightmere_target_sources layer)
    get_target_property(library ${layer} BRIGHTMERE_LIBRARY)
    if(NOT library)
        message(FATAL_ERROR "brightmere_target_sources(${layer}): not a layer made by brightmere_add_layer")
    endif()
    set(scope "")
    foreach(word IN LISTS ARGN)
        if(word STREQUAL "PUBLIC" OR word STREQUAL "PRIVATE")
            set(scope ${word})
            continue()
        endif()
        if(scope STREQUAL "")
            message(FATAL_ERROR "brightmere_target_sources(${layer}): say PUBLIC or PRIVATE before ${word}")
        endif()
        set(header ${CMAKE_CURRENT_SOURCE_DIR}/${word}.h)
        target_sources(${layer} PRIVATE ${header})
        if(scope STREQUAL "PUBLIC")
            target_sources(${library} PUBLIC FILE_SET HEADERS FILES ${header})
        endif()
        if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${word}.cpp)
            target_sources(${layer} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/${word}.cpp)
        endif()
    endforeach()
endfunction()
