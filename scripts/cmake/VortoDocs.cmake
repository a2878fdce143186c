# SPDX-License-Identifier: BSD-3-Clause
# The site of the documentation: the target docs writes it into docs/html of the build folder, `make install` takes it along
# when it is there.
set(lines "Platform Platform/Visibility.h\n")
foreach(room ${VORTO_ROOMS} ${VORTO_EDITOR_ROOMS})
  get_target_property(headers room_${room} VORTO_HEADERS)
  foreach(header ${headers})
    file(RELATIVE_PATH header ${CMAKE_SOURCE_DIR}/Source ${header})
    string(APPEND lines "${room} ${header}\n")
  endforeach()
endforeach()
file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/public-headers CONTENT "${lines}" @ONLY)

set(VORTO_DOCS ${CMAKE_SOURCE_DIR}/build/docs/html)
add_custom_target(docs COMMAND ${CMAKE_SOURCE_DIR}/scripts/site/make ${CMAKE_BINARY_DIR} ${VORTO_DOCS} USES_TERMINAL)
install(DIRECTORY ${VORTO_DOCS} DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/vorto OPTIONAL)
