# libiberty comes without a package file. Gives Libiberty::libiberty, the static library of libiberty-dev.

find_path(LIBIBERTY_INCLUDE_DIR libiberty/demangle.h)
find_library(LIBIBERTY_LIBRARY NAMES libiberty.a)
mark_as_advanced(LIBIBERTY_INCLUDE_DIR LIBIBERTY_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Libiberty REQUIRED_VARS LIBIBERTY_LIBRARY LIBIBERTY_INCLUDE_DIR)

if(Libiberty_FOUND AND NOT TARGET Libiberty::libiberty)
    add_library(Libiberty::libiberty STATIC IMPORTED)
    set_target_properties(Libiberty::libiberty PROPERTIES
        IMPORTED_LOCATION "${LIBIBERTY_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${LIBIBERTY_INCLUDE_DIR}"
        # or its header declares a basename() of its own, against the one of <string.h>
        INTERFACE_COMPILE_DEFINITIONS HAVE_DECL_BASENAME=1)
endif()
