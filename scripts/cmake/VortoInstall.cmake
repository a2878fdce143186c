# SPDX-License-Identifier: BSD-3-Clause
# What `make install` puts where, and the packages by which others find it.
include(CMakePackageConfigHelpers)

set(headers FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vorto)
install(TARGETS vorto EXPORT VortoTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ${headers})
set_target_properties(vorto PROPERTIES EXPORT_NAME Vorto)
install(EXPORT VortoTargets NAMESPACE Vorto:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Vorto)
# In a set of its own, so that a package user without Qt finds the framework all the same.
if(VORTO_EDITORS)
  set_target_properties(vorto-editors PROPERTIES EXPORT_NAME Editors INSTALL_RPATH "$ORIGIN")
  install(TARGETS vorto-editors EXPORT VortoEditorsTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ${headers})
  install(EXPORT VortoEditorsTargets NAMESPACE Vorto:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Vorto)
endif()

configure_package_config_file(${CMAKE_SOURCE_DIR}/scripts/cmake/VortoConfig.cmake.in ${CMAKE_BINARY_DIR}/VortoConfig.cmake
                              INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Vorto
                              PATH_VARS CMAKE_INSTALL_LIBDIR CMAKE_INSTALL_BINDIR)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/VortoConfigVersion.cmake COMPATIBILITY SameMinorVersion)
set(effect_functions VortoEffects.cmake VortoCheckComposition.cmake EffectInfo.plist.in effect-exports.map)
list(TRANSFORM effect_functions PREPEND ${CMAKE_SOURCE_DIR}/scripts/cmake/)
install(FILES ${CMAKE_BINARY_DIR}/VortoConfig.cmake ${CMAKE_BINARY_DIR}/VortoConfigVersion.cmake ${effect_functions}
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Vorto)
if(CMAKE_INSTALL_LIBDIR MATCHES "^lib/")
  foreach(file VortoConfig.cmake VortoConfigVersion.cmake)
    install(FILES ${CMAKE_SOURCE_DIR}/scripts/cmake/VortoForward.cmake DESTINATION ${CMAKE_INSTALL_DATADIR}/cmake/Vorto RENAME ${file})
  endforeach()
endif()

# The files tell where they lie, so that an installation can be moved.
file(RELATIVE_PATH VORTO_PREFIX_FROM_PKGCONFIG /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(${CMAKE_SOURCE_DIR}/scripts/cmake/vorto.pc.in ${CMAKE_BINARY_DIR}/vorto.pc @ONLY)
configure_file(${CMAKE_SOURCE_DIR}/scripts/cmake/vorto-editors.pc.in ${CMAKE_BINARY_DIR}/vorto-editors.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/vorto.pc ${CMAKE_BINARY_DIR}/vorto-editors.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(FILES ${CMAKE_SOURCE_DIR}/README.md ${CMAKE_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/vorto)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/Docs DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/vorto PATTERN Site EXCLUDE)
install(PROGRAMS ${CMAKE_SOURCE_DIR}/scripts/demo ${CMAKE_SOURCE_DIR}/scripts/gallery
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/vorto/examples)

include(VortoDocs)
