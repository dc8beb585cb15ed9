# What every target of this project is compiled with. Consumers inherit none of it.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
# Where the build stands shall not show in what it makes.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release)
endif()

add_library(ktCompiler INTERFACE)
target_compile_options(ktCompiler INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast -Wnon-virtual-dtor
    -Woverloaded-virtual -Wcast-align -Wdouble-promotion -Wformat=2
    # A format that comes from outside is never a false alarm.
    -Werror=format-security
    # Nobody replaces single functions of a library: calls within one need no detour through its tables.
    -fno-semantic-interposition -fno-plt
    # Results must not depend on whether the compiler may fuse a multiplication with an addition.
    -ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC 12 reports overlapping copies inside std::string at -O3 where there are none.
    target_compile_options(ktCompiler INTERFACE -Wno-restrict)
endif()
# What is shipped holds no path of the machine that built it.
target_compile_options(ktCompiler INTERFACE
    "$<$<CONFIG:Release>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.;-ffile-prefix-map=${PROJECT_BINARY_DIR}=.>")
if(KT_WERROR)
    target_compile_options(ktCompiler INTERFACE -Werror)
endif()
if(KT_SANITIZE)
    target_compile_options(ktCompiler INTERFACE -fsanitize=${KT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(ktCompiler INTERFACE -fsanitize=${KT_SANITIZE})
    target_sources(ktCompiler INTERFACE
        "$<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:${CMAKE_CURRENT_LIST_DIR}/SanitizerDefaults.cpp>")
    # Instrumented, the standard library's regular expressions look uninitialised to g++.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_compile_options(ktCompiler INTERFACE -Wno-maybe-uninitialized)
    endif()
endif()
if(KT_COVERAGE)
    target_compile_options(ktCompiler INTERFACE --coverage -O0)
    target_link_options(ktCompiler INTERFACE --coverage)
endif()
include(KtHardening)
if(KT_BUILD_FUZZERS)
    target_compile_options(ktCompiler INTERFACE -fsanitize=fuzzer-no-link)
endif()
