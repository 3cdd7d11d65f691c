# vs_wml_warnings(TARGET): the warnings that all of the project's code is held to.
function(vs_wml_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
                                           -Wsign-conversion -Wundef)
  # GCC 12 sees overlapping copies in std::string that cannot happen (GCC bug 105651).
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(${target} PRIVATE -Wno-restrict)
  endif()
  if(VS_WML_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
