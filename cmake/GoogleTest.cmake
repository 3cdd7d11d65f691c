# GoogleTest from its Debian sources, so that it is built with the flags of the tests:
# sanitizers, 32 bits and foreign machines included. Installed binaries are the fallback.
set(VS_WML_GOOGLETEST_SOURCE /usr/src/googletest CACHE PATH "Source folder of GoogleTest")
if(EXISTS ${VS_WML_GOOGLETEST_SOURCE}/CMakeLists.txt)
  set(INSTALL_GTEST OFF CACHE INTERNAL "")
  set(gtest_disable_pthreads OFF CACHE INTERNAL "")
  add_subdirectory(${VS_WML_GOOGLETEST_SOURCE} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
  target_compile_options(gtest PRIVATE -w) # its warnings are not ours to fix
  if(NOT TARGET GTest::gtest_main)
    add_library(GTest::gtest ALIAS gtest)
    add_library(GTest::gtest_main ALIAS gtest_main)
    add_library(GTest::gmock ALIAS gmock)
  endif()
else()
  find_package(GTest REQUIRED)
endif()
include(GoogleTest)
