# SPDX-License-Identifier: BSD-3-Clause
set(VORTO_ROOMS "" CACHE INTERNAL "")
set(VORTO_EDITOR_ROOMS "" CACHE INTERNAL "")

# vorto_room(NAME FOLDER folder [EDITORS] [LIBRARIES ...] [HEADERS ...]): an object library room_NAME of the folder's sources.
# Rooms belong to libvorto, those marked EDITORS to libvorto-editors; HEADERS are public, named within the folder.
function(vorto_room name)
  cmake_parse_arguments(arg "EDITORS" "FOLDER" "LIBRARIES;HEADERS" ${ARGN})
  set(folder ${CMAKE_CURRENT_SOURCE_DIR}/${arg_FOLDER})
  file(GLOB sources CONFIGURE_DEPENDS ${folder}/*.cpp ${folder}/kernels/*.cpp)
  add_library(room_${name} OBJECT ${sources})
  target_link_libraries(room_${name} PRIVATE vorto_settings PUBLIC ${arg_LIBRARIES})
  list(TRANSFORM arg_HEADERS PREPEND ${folder}/)
  set_target_properties(room_${name} PROPERTIES VORTO_HEADERS "${arg_HEADERS}")
  if(arg_EDITORS)
    set(VORTO_EDITOR_ROOMS ${VORTO_EDITOR_ROOMS} ${name} CACHE INTERNAL "")
  else()
    set(VORTO_ROOMS ${VORTO_ROOMS} ${name} CACHE INTERNAL "")
  endif()
endfunction()

# Links the rooms named into a target.
function(vorto_link_rooms target)
  list(TRANSFORM ARGN PREPEND room_)
  target_link_libraries(${target} PRIVATE ${ARGN})
endfunction()

# vorto_assemble(TARGET ROOMS ...): the shared library of these rooms, with their public headers.
function(vorto_assemble target)
  add_library(${target} SHARED)
  vorto_link_rooms(${target} ${ARGN})
  target_link_libraries(${target} PRIVATE vorto_settings)
  foreach(room ${ARGN})
    get_target_property(headers room_${room} VORTO_HEADERS)
    target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS ${CMAKE_CURRENT_SOURCE_DIR} FILES ${headers})
  endforeach()
  set_target_properties(${target} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  set(exports ${CMAKE_SOURCE_DIR}/scripts/cmake/library-exports.map)
  target_link_options(${target} PRIVATE -Wl,--version-script=${exports})
  set_target_properties(${target} PROPERTIES LINK_DEPENDS ${exports})
  if(NOT VORTO_SANITIZE AND NOT VORTO_SANITIZE_THREADS)
    target_link_options(${target} PRIVATE -Wl,--no-undefined)
  endif()
endfunction()
