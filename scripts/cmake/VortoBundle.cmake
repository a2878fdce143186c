# SPDX-License-Identifier: BSD-3-Clause
# vorto_bundle(TARGET NAME): NAME.bundle of the folder Resources here, beside the libraries in the build tree, in share/vorto once
# installed. The folder holds Info.plist, and beside it what becomes Contents/Resources.
function(vorto_bundle target name)
  set(bundle ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/${name}.bundle/Contents)
  file(GLOB_RECURSE resources CONFIGURE_DEPENDS RELATIVE ${CMAKE_CURRENT_SOURCE_DIR}/Resources ${CMAKE_CURRENT_SOURCE_DIR}/Resources/*)
  set(copies)
  foreach(resource ${resources})
    if(resource STREQUAL Info.plist)
      set(place ${resource})
    else()
      set(place Resources/${resource})
    endif()
    add_custom_command(OUTPUT ${bundle}/${place} DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/Resources/${resource}
                       COMMAND ${CMAKE_COMMAND} -E copy ${CMAKE_CURRENT_SOURCE_DIR}/Resources/${resource} ${bundle}/${place} VERBATIM)
    list(APPEND copies ${bundle}/${place})
    cmake_path(GET place PARENT_PATH folder)
    install(FILES ${CMAKE_CURRENT_SOURCE_DIR}/Resources/${resource}
            DESTINATION ${CMAKE_INSTALL_DATADIR}/vorto/${name}.bundle/Contents/${folder})
  endforeach()
  add_custom_target(${target} ALL DEPENDS ${copies})
endfunction()
