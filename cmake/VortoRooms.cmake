set(VORTO_ROOMS "" CACHE INTERNAL "")
set(VORTO_EDITOR_ROOMS "" CACHE INTERNAL "")

# vorto_room(NAME FOLDER folder [EDITORS] [LIBRARIES ...]): an object library room_NAME of the folder's sources. Rooms belong to
# libvorto, those marked EDITORS to libvorto-editors.
function(vorto_room name)
  cmake_parse_arguments(arg "EDITORS" "FOLDER" "LIBRARIES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${arg_FOLDER}/*.cpp
       ${CMAKE_SOURCE_DIR}/${arg_FOLDER}/kernels/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_library(room_${name} OBJECT ${sources})
  target_link_libraries(room_${name} PRIVATE vorto_settings PUBLIC ${arg_LIBRARIES})
  if(arg_EDITORS)
    set(VORTO_EDITOR_ROOMS ${VORTO_EDITOR_ROOMS} ${name} CACHE INTERNAL "")
  else()
    set(VORTO_ROOMS ${VORTO_ROOMS} ${name} CACHE INTERNAL "")
  endif()
endfunction()

# Links the rooms named into a target.
function(vorto_link_rooms target)
  set(rooms ${ARGN})
  foreach(room ${rooms})
    if(TARGET room_${room})
      target_link_libraries(${target} PRIVATE room_${room})
    endif()
  endforeach()
endfunction()

# vorto_assemble(TARGET ROOMS ...): the shared library of these rooms.
function(vorto_assemble target)
  add_library(${target} SHARED)
  vorto_link_rooms(${target} ${ARGN})
  target_link_libraries(${target} PRIVATE vorto_settings)
  target_include_directories(${target} INTERFACE $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}> $<INSTALL_INTERFACE:include/vorto>)
  set_target_properties(${target} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  if(NOT VORTO_SANITIZE)
    target_link_options(${target} PRIVATE -Wl,--no-undefined)
  endif()
endfunction()
