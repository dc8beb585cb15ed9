# CMake packages and pkg-config files of what was built.
include(CMakePackageConfigHelpers)

function(kt_install_package package export_set)
    set(destination "${CMAKE_INSTALL_LIBDIR}/cmake/${package}")
    install(EXPORT ${export_set} NAMESPACE kt:: FILE ${package}Targets.cmake DESTINATION ${destination}
        COMPONENT development)
    configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/${package}Config.cmake.in"
        "${PROJECT_BINARY_DIR}/${package}Config.cmake" INSTALL_DESTINATION ${destination})
    write_basic_package_version_file("${PROJECT_BINARY_DIR}/${package}ConfigVersion.cmake"
        VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
    install(FILES "${PROJECT_BINARY_DIR}/${package}Config.cmake" "${PROJECT_BINARY_DIR}/${package}ConfigVersion.cmake"
        DESTINATION ${destination} COMPONENT development)
endfunction()

if(KT_PLATFORM STREQUAL "bundled")
    kt_install_package(ktPlatform ktPlatformTargets)
endif()
kt_install_package(ktAnnotationLegacy ktAnnotationLegacyTargets)

configure_file("${PROJECT_SOURCE_DIR}/cmake/ktAnnotationLegacy.pc.in" "${PROJECT_BINARY_DIR}/ktAnnotationLegacy.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/ktAnnotationLegacy.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
    COMPONENT development)
