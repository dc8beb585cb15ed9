# Debian packages (cpack -G DEB): ktannot with the tool and the libraries, libktannotationlegacy-dev to build against them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ktannot)
set(CPACK_PACKAGE_VENDOR "the libktAnnotationLegacy authors")
set(CPACK_PACKAGE_CONTACT "the libktAnnotationLegacy authors <maintainers@ktannot.invalid>")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
# A version with another patch level may have grown functions.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ktannot)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "The tool ktannot reads legacy annotation documents, binary streams and
variant documents alike, and writes one drawing per view. With it come the
shared libraries that do the work.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "fonts-liberation, fonts-noto-core, fonts-symbola")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SUGGESTS "fonts-noto-cjk")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libktannotationlegacy-dev)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "Headers, CMake and pkg-config packages of libktAnnotationLegacy, to build
programs that read legacy 3D annotations and migrate them to the current
annotation model.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "ktannot (= ${PROJECT_VERSION})")

include(CPack)
