# Sanitizers and coverage: for everything that is built, the test libraries included.
if(VS_WML_SANITIZE)
  add_compile_options(-fsanitize=${VS_WML_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${VS_WML_SANITIZE})
  # One routine, SODummy, stands in slots of every type; the calling convention allows it.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    add_compile_options(-fno-sanitize=function
                        -fsanitize-ignorelist=${PROJECT_SOURCE_DIR}/cmake/sanitizer-ignore.txt)
  endif()
endif()
if(VS_WML_COVERAGE)
  add_compile_options(--coverage -fprofile-update=atomic)
  add_link_options(--coverage)
endif()
