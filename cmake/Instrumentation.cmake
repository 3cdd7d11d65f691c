# Sanitizers and coverage: for everything that is built, the test libraries included.
if(VS_WML_SANITIZE)
  add_compile_options(-fsanitize=${VS_WML_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${VS_WML_SANITIZE})
endif()
if(VS_WML_COVERAGE)
  add_compile_options(--coverage -fprofile-update=atomic)
  add_link_options(--coverage)
endif()
