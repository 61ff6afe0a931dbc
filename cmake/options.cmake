# Build options, and quorvane_options: the flags that every target of the tree compiles and links with.

option(QUORVANE_WERROR "Warnings are errors" ON)
option(QUORVANE_LTO "Optimise across files when linking" OFF)
option(QUORVANE_TINY_LIMITS "Smallest slabs and growth steps, so that tests meet every boundary" OFF)
option(QUORVANE_COVERAGE "Count what the tests reach (gcov)" OFF)
option(QUORVANE_BENCHMARKS "Build what bench/micro measures and bench/images.py compares with" OFF)
option(QUORVANE_FUZZ "Build the fuzz targets of tests/fuzz (needs clang)" OFF)
set(QUORVANE_SANITIZE "" CACHE STRING "Sanitizers to build with, for example address,undefined")

add_library(quorvane_options INTERFACE)
target_compile_features(quorvane_options INTERFACE cxx_std_20)
target_compile_definitions(quorvane_options INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_NO_KEYWORDS
    $<$<BOOL:${QUORVANE_TINY_LIMITS}>:QUORVANE_TINY_LIMITS=1>
    $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
target_compile_options(quorvane_options INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wold-style-cast -Wnon-virtual-dtor
    $<$<BOOL:${QUORVANE_WERROR}>:-Werror>)

# Qt asks for -fPIC. Everything ends in one program, so no symbol is ever interposed: telling the compiler
# gives back the inlining and the direct calls that -fPIC costs.
target_compile_options(quorvane_options INTERFACE
    -fvisibility=hidden -fvisibility-inlines-hidden -fno-semantic-interposition)

# No path of the build machine in what is shipped.
target_compile_options(quorvane_options INTERFACE
    $<$<CONFIG:Release>:-ffile-prefix-map=${CMAKE_BINARY_DIR}/=>
    $<$<CONFIG:Release>:-ffile-prefix-map=${CMAKE_SOURCE_DIR}/=>)

# -O2 stands behind CMake's own -O3 on the command line and so wins.
target_compile_options(quorvane_options INTERFACE
    "$<$<CONFIG:Release>:-O2;-fstack-protector-strong;-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3;-D_GLIBCXX_ASSERTIONS>")
target_link_options(quorvane_options INTERFACE
    "$<$<CONFIG:Release>:LINKER:-z,relro,-z,now;LINKER:--as-needed>")

# Against a stack that runs over and a return led astray, where the compiler and the processor know how. Only returns:
# Debian's libiberty has no marks of where an indirect jump may land, and one part without them takes the protection
# from the whole program. For the shadow stack it needs none, hence the word to the linker.
include(CheckCXXCompilerFlag)
check_cxx_compiler_flag(-fstack-clash-protection QUORVANE_STACK_CLASH)
check_cxx_compiler_flag(-fcf-protection=return QUORVANE_SHADOW_STACK)
target_compile_options(quorvane_options INTERFACE
    $<$<AND:$<CONFIG:Release>,$<BOOL:${QUORVANE_STACK_CLASH}>>:-fstack-clash-protection>
    $<$<AND:$<CONFIG:Release>,$<BOOL:${QUORVANE_SHADOW_STACK}>>:-fcf-protection=return>)
target_link_options(quorvane_options INTERFACE
    $<$<AND:$<CONFIG:Release>,$<BOOL:${QUORVANE_SHADOW_STACK}>>:LINKER:-z,shstk>)

if(QUORVANE_SANITIZE)
    target_compile_definitions(quorvane_options INTERFACE _GLIBCXX_ASSERTIONS)
    target_compile_options(quorvane_options INTERFACE
        -fsanitize=${QUORVANE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
        # g++ 12 takes the library's own regex for uninitialised where the sanitizers' code is in between.
        $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    target_link_options(quorvane_options INTERFACE -fsanitize=${QUORVANE_SANITIZE})
endif()

if(QUORVANE_FUZZ)
    if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        message(FATAL_ERROR "QUORVANE_FUZZ needs clang: configure with --preset fuzz")
    endif()
    # To trace every comparison makes the machine several times slower, and finds less in the same time.
    target_compile_options(quorvane_options INTERFACE
        -fsanitize=fuzzer-no-link -fno-sanitize-coverage=trace-cmp)
endif()

if(QUORVANE_COVERAGE)
    target_compile_options(quorvane_options INTERFACE --coverage)
    target_link_options(quorvane_options INTERFACE --coverage)
endif()

if(QUORVANE_LTO)
    include(CheckIPOSupported)
    check_ipo_supported(LANGUAGES CXX)
    set(CMAKE_INTERPROCEDURAL_OPTIMIZATION ON)
endif()

find_program(QUORVANE_CCACHE ccache)
mark_as_advanced(QUORVANE_CCACHE)
if(QUORVANE_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${QUORVANE_CCACHE}")
endif()
