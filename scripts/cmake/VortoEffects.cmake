# SPDX-License-Identifier: BSD-3-Clause
# How effects are built: those that ship, and those of people who have the package. Both functions put what they make into the
# folder PlugIns of the build, which VORTO_PLUGIN_PATH may name.

# What was not understood of a call, or what it lacks, as an error that names the call.
function(vorto_check_call call)
  foreach(word ${arg_UNPARSED_ARGUMENTS})
    message(FATAL_ERROR "${call}: \"${word}\" is no argument")
  endforeach()
  foreach(keyword ${arg_KEYWORDS_MISSING_VALUES})
    message(FATAL_ERROR "${call}: ${keyword} has no value")
  endforeach()
  if(NOT name MATCHES "^[A-Za-z0-9][A-Za-z0-9_-]*$")
    message(FATAL_ERROR "${call}: a name is made of letters, digits, _ and -")
  endif()
endfunction()

# vorto_add_effect(NAME SOURCES file... [DISPLAY_NAME text] [IDENTIFIER text] [VERSION text] [LIBRARIES target...]
#                  [TARGET name] [INSTALL folder])
#
# The bundle NAME.plugin with the module NAME, a target of that name unless TARGET gives another. It links Vorto::Vorto and
# LIBRARIES, is compiled as C++20, and exports its entry alone. The rest is for Info.plist: DISPLAY_NAME is what people read
# (NAME), IDENTIFIER tells it from all other bundles, in letters, digits, "-" and "." (local.NAME), VERSION is that of the
# project. INSTALL names the folder of plug-ins that `cmake --install` puts the bundle into; a relative one is below the prefix.
function(vorto_add_effect name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "DISPLAY_NAME;IDENTIFIER;VERSION;TARGET;INSTALL" "SOURCES;LIBRARIES")
  set(call "vorto_add_effect(${name})")
  vorto_check_call("${call}")
  if(NOT arg_SOURCES)
    message(FATAL_ERROR "${call}: SOURCES are missing")
  endif()
  string(REPLACE "_" "-" plain ${name})
  foreach(default "DISPLAY_NAME;${name}" "IDENTIFIER;local.${plain}" "VERSION;${PROJECT_VERSION}" "TARGET;${name}")
    list(GET default 0 keyword)
    if(NOT arg_${keyword})
      list(GET default 1 arg_${keyword})
    endif()
  endforeach()
  if(NOT arg_IDENTIFIER MATCHES "^[A-Za-z0-9-]+([.][A-Za-z0-9-]+)*$")
    message(FATAL_ERROR "${call}: the identifier \"${arg_IDENTIFIER}\" is not made of letters, digits, - and single stops")
  endif()

  set(contents ${CMAKE_BINARY_DIR}/PlugIns/${name}.plugin/Contents)
  set(exports ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/effect-exports.map)
  add_library(${arg_TARGET} MODULE ${arg_SOURCES})
  target_link_libraries(${arg_TARGET} PRIVATE ${arg_LIBRARIES} Vorto::Vorto)
  target_compile_features(${arg_TARGET} PRIVATE cxx_std_20)
  target_link_options(${arg_TARGET} PRIVATE -Wl,--version-script=${exports})
  set_target_properties(${arg_TARGET} PROPERTIES
    PREFIX "" SUFFIX "" OUTPUT_NAME ${name} LIBRARY_OUTPUT_DIRECTORY $<1:${contents}/Linux>
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON LINK_DEPENDS ${exports})
  foreach(text DISPLAY_NAME VERSION)
    string(REPLACE "&" "&amp;" arg_${text} "${arg_${text}}")
    string(REPLACE "<" "&lt;" arg_${text} "${arg_${text}}")
  endforeach()
  configure_file(${CMAKE_CURRENT_FUNCTION_LIST_DIR}/EffectInfo.plist.in ${contents}/Info.plist @ONLY)
  set_property(GLOBAL APPEND PROPERTY VORTO_EFFECT_TARGETS ${arg_TARGET})
  if(arg_INSTALL)
    install(TARGETS ${arg_TARGET} LIBRARY DESTINATION ${arg_INSTALL}/${name}.plugin/Contents/Linux)
    install(FILES ${contents}/Info.plist DESTINATION ${arg_INSTALL}/${name}.plugin/Contents)
  endif()
endfunction()

# vorto_add_composition(NAME file.qtz [INSTALL folder])
#
# The composition NAME.qtz, which may use effects and compositions that were added before it. Where the program vorto was found
# with the package, the target NAME has it load the composition, and fails with its reason.
function(vorto_add_composition name file)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "INSTALL" "")
  vorto_check_call("vorto_add_composition(${name})")
  cmake_path(ABSOLUTE_PATH file NORMALIZE)
  if(NOT EXISTS ${file})
    message(FATAL_ERROR "vorto_add_composition(${name}): there is no file ${file}")
  endif()
  set(plugins ${CMAKE_BINARY_DIR}/PlugIns)
  configure_file(${file} ${plugins}/${name}.qtz COPYONLY)
  if(Vorto_PROGRAM)
    get_property(effects GLOBAL PROPERTY VORTO_EFFECT_TARGETS)
    set(check ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/VortoCheckComposition.cmake)
    set(scratch ${CMAKE_CURRENT_BINARY_DIR}/${name}-check)
    add_custom_command(OUTPUT ${scratch}/done DEPENDS ${file} ${check} ${effects}
      COMMAND ${CMAKE_COMMAND} -DPROGRAM=${Vorto_PROGRAM} -DNAME=${name} -DFILE=${file} -DPLUGINS=${plugins}
              -DSCRATCH=${scratch} -P ${check}
      COMMENT "Loading the composition ${name}" VERBATIM)
    add_custom_target(${name} ALL DEPENDS ${scratch}/done)
    set_property(GLOBAL APPEND PROPERTY VORTO_EFFECT_TARGETS ${name})
  endif()
  if(arg_INSTALL)
    install(FILES ${plugins}/${name}.qtz DESTINATION ${arg_INSTALL})
  endif()
endfunction()
