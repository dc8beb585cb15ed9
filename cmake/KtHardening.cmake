# What makes mistakes harder to exploit, for every target of this project. tests/package/check_hardening.py looks into
# the built files. Sanitizers and coverage bring their own instrumentation, which these flags would disturb.
option(KT_HARDENING "Build with the compiler's and the linker's protections" ON)
if(NOT KT_HARDENING OR KT_SANITIZE OR KT_COVERAGE OR KT_BUILD_FUZZERS)
    return()
endif()

include(CheckCXXCompilerFlag)
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)

# kt_harden(<flag...>): uses each flag that the compiler knows for this processor.
function(kt_harden)
    foreach(flag IN LISTS ARGN)
        string(MAKE_C_IDENTIFIER "KT_HAS${flag}" known)
        check_cxx_compiler_flag("-Werror ${flag}" ${known})
        if(${known})
            target_compile_options(ktCompiler INTERFACE ${flag})
        endif()
    endforeach()
endfunction()

kt_harden(-fstack-protector-strong -fstack-clash-protection -ftrivial-auto-var-init=zero)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64|i[3-6]86")
    kt_harden(-fcf-protection=full)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
    kt_harden(-mbranch-protection=standard)
endif()
# The checks of the C library's functions need the optimiser; who builds with a level of his own keeps it.
if(NOT CMAKE_CXX_FLAGS MATCHES "_FORTIFY_SOURCE")
    target_compile_definitions(ktCompiler INTERFACE "$<$<NOT:$<CONFIG:Debug>>:_FORTIFY_SOURCE=2>")
endif()
target_link_options(ktCompiler INTERFACE "LINKER:-z,relro,-z,now,-z,noexecstack")
