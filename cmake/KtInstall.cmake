# CMake packages, pkg-config files, manual page and shell completions of what was built.
include(CMakePackageConfigHelpers)

# kt_install_package(<package> <export set>): the CMake package <package> with the targets of the set, and its pkg-config file.
function(kt_install_package package export_set)
    set(destination "${CMAKE_INSTALL_LIBDIR}/cmake/${package}")
    install(EXPORT ${export_set} NAMESPACE kt:: FILE ${package}Targets.cmake DESTINATION ${destination}
        COMPONENT development)
    # The build tree is a package, too: a host finds it there by CMAKE_PREFIX_PATH.
    export(EXPORT ${export_set} NAMESPACE kt:: FILE "${PROJECT_BINARY_DIR}/${package}Targets.cmake")
    configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/${package}Config.cmake.in"
        "${PROJECT_BINARY_DIR}/${package}Config.cmake" INSTALL_DESTINATION ${destination}
        NO_SET_AND_CHECK_MACRO)
    write_basic_package_version_file("${PROJECT_BINARY_DIR}/${package}ConfigVersion.cmake"
        VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
    install(FILES "${PROJECT_BINARY_DIR}/${package}Config.cmake" "${PROJECT_BINARY_DIR}/${package}ConfigVersion.cmake"
        DESTINATION ${destination} COMPONENT development)

    # Relative to the file itself, so that an installation may be moved or staged.
    file(RELATIVE_PATH KT_PC_PREFIX "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
    string(REGEX REPLACE "/$" "" KT_PC_PREFIX "${KT_PC_PREFIX}")
    configure_file("${PROJECT_SOURCE_DIR}/cmake/${package}.pc.in" "${PROJECT_BINARY_DIR}/${package}.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/${package}.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
        COMPONENT development)
endfunction()

if(KT_PLATFORM STREQUAL "bundled")
    kt_install_package(ktPlatform ktPlatformTargets)
endif()
kt_install_package(ktAnnotationLegacy ktAnnotationLegacyTargets)
kt_install_package(ktLegacyDocument ktLegacyDocumentTargets)

if(KT_BUILD_TOOLS)
    set(completions "${PROJECT_SOURCE_DIR}/tools/ktannot/completions")
    install(FILES "${PROJECT_SOURCE_DIR}/docs/ktannot.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT runtime)
    install(FILES "${completions}/ktannot.bash" RENAME ktannot
        DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" COMPONENT runtime)
    install(FILES "${completions}/_ktannot"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions" COMPONENT runtime)
    install(FILES "${completions}/ktannot.fish"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d" COMPONENT runtime)
endif()
install(FILES
    "${PROJECT_SOURCE_DIR}/CHANGELOG.md" "${PROJECT_SOURCE_DIR}/LICENSE" "${PROJECT_SOURCE_DIR}/README.md"
    DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT runtime)
