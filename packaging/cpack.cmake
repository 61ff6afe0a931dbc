# cpack -G DEB makes the Debian package, cpack --config CPackSourceConfig.cmake the source archive.

set(CPACK_PACKAGE_NAME quorvane)
set(CPACK_PACKAGE_VENDOR "The quorvane authors")
set(CPACK_PACKAGE_CONTACT "The quorvane authors <quorvane@users.noreply.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "script host that inspects and patches linked firmware images")
set(CPACK_PACKAGE_DESCRIPTION "quorvane runs scripts, written in a small dialect of JavaScript, that load a
32-bit ELF file of either byte order, find symbols by their C or C++ names,
read and write words and bytes at the addresses of the target, take a CRC
over flash with its gaps filled, and save the result without moving a byte.
.
It is made to be a step of a build: it has no state and no configuration, and
comes with a CMake package and a fragment for GNU make. quorvane-check finds
mistakes in scripts without running them.")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_GENERATOR DEB)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/packaging/debian/prepare.cmake")

set(CPACK_SOURCE_GENERATOR TXZ)
set(CPACK_SOURCE_PACKAGE_FILE_NAME "quorvane-${PROJECT_VERSION}")
set(CPACK_SOURCE_IGNORE_FILES "/build/" "/[.]git/" "/[.]cache/" "/__pycache__/" "[.]swp$" "/CMakeUserPresets[.]json$")

include(CPack)
