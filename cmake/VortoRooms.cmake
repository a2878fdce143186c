set(VORTO_ROOMS "" CACHE INTERNAL "")

# vorto_room(NAME FOLDER folder [LIBRARIES ...]): an object library room_NAME of the folder's sources.
function(vorto_room name)
  cmake_parse_arguments(arg "" "FOLDER" "LIBRARIES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${arg_FOLDER}/*.cpp
       ${CMAKE_SOURCE_DIR}/${arg_FOLDER}/kernels/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_library(room_${name} OBJECT ${sources})
  target_link_libraries(room_${name} PRIVATE vorto_settings PUBLIC ${arg_LIBRARIES})
  set(VORTO_ROOMS ${VORTO_ROOMS} ${name} CACHE INTERNAL "")
endfunction()

# Links the rooms named (all of them when none is) into a target.
function(vorto_link_rooms target)
  set(rooms ${ARGN})
  foreach(room ${rooms})
    if(TARGET room_${room})
      target_link_libraries(${target} PRIVATE room_${room})
    endif()
  endforeach()
endfunction()

function(vorto_assemble target)
  vorto_link_rooms(${target} ${VORTO_ROOMS})
  target_link_libraries(${target} PRIVATE vorto_settings PUBLIC Imath::Imath)
  target_include_directories(${target} INTERFACE $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}> $<INSTALL_INTERFACE:include/vorto>)
  set_target_properties(${target} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  if(NOT VORTO_SANITIZE)
    target_link_options(${target} PRIVATE -Wl,--no-undefined)
  endif()
endfunction()
