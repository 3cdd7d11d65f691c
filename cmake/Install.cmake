# Installation: the library and its header, what finds them (pkg-config, CMake), unwml.
include(CMakePackageConfigHelpers)

install(TARGETS vs_wml EXPORT vs_wmlTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
                COMPONENT library NAMELINK_COMPONENT development)
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT library)
# As in the source tree, so that the links from one to another hold.
install(FILES README.md CHANGELOG.md CONTRIBUTING.md SECURITY.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)
install(FILES filter/vs_wml.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

# With a relative library folder the .pc file finds its prefix from where it lies, so that
# `cmake --install --prefix` is right as well; an absolute one fixes it.
set(pc_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(pc_prefix "${CMAKE_INSTALL_PREFIX}")
  set(pc_libdir "${CMAKE_INSTALL_LIBDIR}")
else()
  file(RELATIVE_PATH up /prefix/${pc_dir} /prefix)
  string(REGEX REPLACE "/$" "" up "${up}")
  set(pc_prefix "\${pcfiledir}/${up}")
  set(pc_libdir "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
endif()
if(IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
  set(pc_includedir "${CMAKE_INSTALL_INCLUDEDIR}")
else()
  set(pc_includedir "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
configure_file(packaging/vs_wml.pc.in vs_wml.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vs_wml.pc DESTINATION ${pc_dir} COMPONENT development)

set(cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vs_wml)
configure_package_config_file(packaging/vs_wmlConfig.cmake.in vs_wmlConfig.cmake
                              INSTALL_DESTINATION ${cmake_dir})
# While the version is 0.x a minor release may break the API of the host library.
write_basic_package_version_file(vs_wmlConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/vs_wmlConfig.cmake
              ${PROJECT_BINARY_DIR}/vs_wmlConfigVersion.cmake
        DESTINATION ${cmake_dir} COMPONENT development)
install(EXPORT vs_wmlTargets NAMESPACE vs_wml:: DESTINATION ${cmake_dir} COMPONENT development)
