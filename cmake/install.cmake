# What `cmake --install` puts where, and the CMake package, for the installed tree and for the build tree.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(shared "${CMAKE_INSTALL_DATADIR}/quorvane")

foreach(program quorvane quorvane-check)
    if(TARGET ${program})
        install(TARGETS ${program} RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
    endif()
    install(FILES packaging/man/${program}.1 DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
    install(FILES packaging/completions/${program}.bash
        DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" RENAME ${program})
    install(FILES packaging/completions/_${program} DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/site-functions")
    install(FILES packaging/completions/${program}.fish
        DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d")
endforeach()
install(FILES packaging/man/quorvane-script.7 DESTINATION "${CMAKE_INSTALL_MANDIR}/man7")

install(DIRECTORY "${PROJECT_SOURCE_DIR}/lib" DESTINATION "${shared}" OPTIONAL FILES_MATCHING PATTERN "*.js")
install(FILES packaging/make/quorvane.mk DESTINATION "${shared}")
install(FILES types/quorvane.d.ts types/jsconfig.json DESTINATION "${shared}/types")

install(FILES README.md CHANGELOG.md SECURITY.md LICENSE DESTINATION "${CMAKE_INSTALL_DOCDIR}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs/" DESTINATION "${CMAKE_INSTALL_DOCDIR}/docs" OPTIONAL)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples/" DESTINATION "${CMAKE_INSTALL_DOCDIR}/examples" OPTIONAL)

# Under share, because a project for another processor has to find it too: there the folder of the libraries
# has another name, and the size of a pointer is none of the program's business.
set(package "${CMAKE_INSTALL_DATADIR}/cmake/Quorvane")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/QuorvaneConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion ARCH_INDEPENDENT)

set(QUORVANE_PACKAGE_PROGRAM "${CMAKE_INSTALL_BINDIR}/quorvane")
set(QUORVANE_PACKAGE_LIBRARY "${shared}/lib")
configure_package_config_file(cmake/QuorvaneConfig.cmake.in
    "${PROJECT_BINARY_DIR}/package/QuorvaneConfig.cmake"
    INSTALL_DESTINATION "${package}"
    PATH_VARS QUORVANE_PACKAGE_PROGRAM QUORVANE_PACKAGE_LIBRARY)
install(FILES
    "${PROJECT_BINARY_DIR}/package/QuorvaneConfig.cmake"
    "${PROJECT_BINARY_DIR}/QuorvaneConfigVersion.cmake"
    cmake/QuorvanePostBuild.cmake
    DESTINATION "${package}")

# The same for -DQuorvane_DIR=<build folder>.
set(QUORVANE_PACKAGE_PROGRAM "${PROJECT_BINARY_DIR}/quorvane")
set(QUORVANE_PACKAGE_LIBRARY "${PROJECT_SOURCE_DIR}/lib")
configure_package_config_file(cmake/QuorvaneConfig.cmake.in "${PROJECT_BINARY_DIR}/QuorvaneConfig.cmake"
    INSTALL_DESTINATION "${PROJECT_BINARY_DIR}" INSTALL_PREFIX "${PROJECT_BINARY_DIR}"
    PATH_VARS QUORVANE_PACKAGE_PROGRAM QUORVANE_PACKAGE_LIBRARY)
configure_file(cmake/QuorvanePostBuild.cmake "${PROJECT_BINARY_DIR}/QuorvanePostBuild.cmake" COPYONLY)

include(packaging/cpack.cmake)
