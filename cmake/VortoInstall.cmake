# What `make install` puts where, and the packages by which others find it.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS vorto EXPORT VortoTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
set_target_properties(vorto PROPERTIES EXPORT_NAME Vorto)
install(EXPORT VortoTargets NAMESPACE Vorto:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Vorto)

# A header is public when it exports something or is made of constants and functions that users compile themselves.
foreach(folder Platform TarnCore Channels Ports Registry)
  file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/${folder}/*.h)
  foreach(header ${headers})
    file(STRINGS ${CMAKE_SOURCE_DIR}/${header} exports REGEX "TARN_EXPORT|^constexpr" LIMIT_COUNT 1)
    if(exports AND NOT header MATCHES "/kernels/")
      cmake_path(GET header PARENT_PATH parent)
      install(FILES ${CMAKE_SOURCE_DIR}/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vorto/${parent})
    endif()
  endforeach()
endforeach()

# The framework's own bundle lies beside the library in the build tree and in share/vorto once installed.
file(COPY ${CMAKE_SOURCE_DIR}/Resources/Info.plist DESTINATION ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/Vorto.bundle/Contents)
install(FILES ${CMAKE_SOURCE_DIR}/Resources/Info.plist
        DESTINATION ${CMAKE_INSTALL_DATADIR}/vorto/Vorto.bundle/Contents)

configure_package_config_file(${CMAKE_SOURCE_DIR}/cmake/VortoConfig.cmake.in ${CMAKE_BINARY_DIR}/VortoConfig.cmake
                              INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Vorto
                              PATH_VARS CMAKE_INSTALL_LIBDIR)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/VortoConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/VortoConfig.cmake ${CMAKE_BINARY_DIR}/VortoConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Vorto)

configure_file(${CMAKE_SOURCE_DIR}/cmake/vorto.pc.in ${CMAKE_BINARY_DIR}/vorto.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/vorto.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

set(CPACK_PACKAGE_NAME vorto)
set(CPACK_PACKAGE_CONTACT "the Vorto authors <vorto@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Framework for real-time image effects and the applications that host them")
set(CPACK_RESOURCE_FILE_LICENSE ${CMAKE_SOURCE_DIR}/LICENSE)
set(CPACK_GENERATOR DEB TGZ)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
include(CPack)
