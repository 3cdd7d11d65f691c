# vs_wml_harden(TARGET): what a compiler and a linker can do against faults in memory, for all
# that is shipped. Sanitizers and coverage bring their own.
option(VS_WML_HARDENING "Build the library and unwml hardened" ON)

include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)

set(VS_WML_HARDENING_FLAGS "")
foreach(flag -fstack-protector-strong -fcf-protection)
  string(MAKE_C_IDENTIFIER "VS_WML_HAS${flag}" known)
  check_cxx_compiler_flag("-Werror ${flag}" ${known})
  if(${known})
    list(APPEND VS_WML_HARDENING_FLAGS ${flag})
  endif()
endforeach()
# Checked string functions are those of the optimising compiler.
if(NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
  list(APPEND VS_WML_HARDENING_FLAGS -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
endif()

function(vs_wml_harden target)
  if(NOT VS_WML_HARDENING OR VS_WML_SANITIZE OR VS_WML_COVERAGE)
    return()
  endif()
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  target_compile_options(${target} PRIVATE ${VS_WML_HARDENING_FLAGS})
  get_target_property(type ${target} TYPE)
  if(NOT type STREQUAL "STATIC_LIBRARY")
    # For the code that is made at link time, too.
    target_link_options(${target} PRIVATE ${VS_WML_HARDENING_FLAGS} -Wl,-z,relro,-z,now
                        -Wl,-z,noexecstack)
  endif()
endfunction()
