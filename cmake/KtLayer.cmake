include(GNUInstallDirs)

# kt_add_layer(<target> EXPORT_NAME <name> EXPORT_SET <set> VERSION <x.y.z>
#              HEADERS <public headers...> SOURCES <sources...>
#              [DEPENDS <layers whose headers appear in public headers...>] [PRIVATE_DEPENDS <libraries...>])
#
# One layer is one shared library lib<target>.so.<major>, used as kt::<name> inside the project and after
# installation alike. Paths are relative to the calling CMakeLists.txt; headers are included from the project's root.
function(kt_add_layer target)
    cmake_parse_arguments(ARG "" "EXPORT_NAME;EXPORT_SET;VERSION" "HEADERS;SOURCES;DEPENDS;PRIVATE_DEPENDS" ${ARGN})
    if(ARG_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "kt_add_layer(${target}): unknown arguments ${ARG_UNPARSED_ARGUMENTS}")
    endif()

    add_library(${target} SHARED ${ARG_SOURCES})
    add_library(kt::${ARG_EXPORT_NAME} ALIAS ${target})
    set_property(GLOBAL APPEND PROPERTY KT_LAYERS ${target})
    string(REGEX MATCH "^[0-9]+" soversion "${ARG_VERSION}")
    set_target_properties(${target} PROPERTIES
        EXPORT_NAME ${ARG_EXPORT_NAME} VERSION ${ARG_VERSION} SOVERSION ${soversion}
        INSTALL_RPATH "$ORIGIN" LINK_DEPENDS "${PROJECT_SOURCE_DIR}/cmake/exports.map")
    target_link_options(${target} PRIVATE "LINKER:--version-script=${PROJECT_SOURCE_DIR}/cmake/exports.map")
    target_compile_features(${target} PUBLIC cxx_std_20)
    target_include_directories(${target} PUBLIC
        "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>"
        "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/ktAnnotationLegacy>")
    # The exported target would name private shared libraries, and consumers would have to find them; it does not name
    # what stands behind an interface library of the build.
    add_library(${target}Private INTERFACE)
    target_link_libraries(${target}Private INTERFACE ${ARG_PRIVATE_DEPENDS} ktCompiler)
    target_link_libraries(${target} PUBLIC ${ARG_DEPENDS} PRIVATE "$<BUILD_INTERFACE:${target}Private>")

    install(TARGETS ${target} EXPORT ${ARG_EXPORT_SET}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)
    foreach(header IN LISTS ARG_HEADERS)
        cmake_path(ABSOLUTE_PATH header BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}" OUTPUT_VARIABLE path)
        set_property(GLOBAL APPEND PROPERTY KT_PUBLIC_HEADERS "${path}")
        cmake_path(RELATIVE_PATH path BASE_DIRECTORY "${PROJECT_SOURCE_DIR}")
        cmake_path(GET path PARENT_PATH folder)
        install(FILES "${PROJECT_SOURCE_DIR}/${path}" COMPONENT development
            DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/ktAnnotationLegacy/${folder}")
    endforeach()
endfunction()

# kt_keep_former_header(<target> <former path> <path>): hosts that include a public header by the path it had in an
# earlier release go on doing so, in the build tree and after installation.
function(kt_keep_former_header target former path)
    set(root "${PROJECT_BINARY_DIR}/former-headers")
    file(CONFIGURE OUTPUT "${root}/${former}" CONTENT
        "#pragma once\n\n/// @file\n/// Moved: include \"${path}\".\n\n#include \"${path}\"\n" @ONLY)
    target_include_directories(${target} PUBLIC "$<BUILD_INTERFACE:${root}>")
    cmake_path(GET former PARENT_PATH folder)
    install(FILES "${root}/${former}" COMPONENT development
        DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/ktAnnotationLegacy/${folder}")
endfunction()
