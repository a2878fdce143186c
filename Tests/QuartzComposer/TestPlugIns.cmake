# SPDX-License-Identifier: BSD-3-Clause
# Binaries that the tests put into bundles of their own making. They take the framework's symbols from the program.
set(test_plugin_folder ${CMAKE_BINARY_DIR}/test-plugins)

function(vorto_test_plugins test)
  foreach(name ${ARGN})
    add_library(test-plugin-${name} MODULE QuartzComposer/plugins/PlugIns.cpp)
    target_compile_definitions(test-plugin-${name} PRIVATE TEST_PLUGIN_${name})
    target_link_libraries(test-plugin-${name} PRIVATE vorto_settings)
    set_target_properties(test-plugin-${name} PROPERTIES PREFIX "" OUTPUT_NAME ${name}
                                                         LIBRARY_OUTPUT_DIRECTORY ${test_plugin_folder})
    add_dependencies(${test} test-plugin-${name})
  endforeach()
  target_compile_definitions(${test} PRIVATE TEST_PLUGIN_FOLDER="${test_plugin_folder}")
endfunction()

set_target_properties(test-QuartzComposer PROPERTIES ENABLE_EXPORTS ON)
target_compile_definitions(test-QuartzComposer PRIVATE TEST_DATA="${CMAKE_CURRENT_SOURCE_DIR}/QuartzComposer")
vorto_test_plugins(test-QuartzComposer Good Duplicate Throwing ThrowingDescription WrongVersion
                   NoDescription NoFunction NoEntry Unresolved Searching)
vorto_test_plugins(test-Registry SearchingShared)
# For the host, which finds them from outside.
foreach(name Unmade ThrowingConstructor Hanging)
  add_library(test-plugin-${name} MODULE QuartzComposer/plugins/PlugIns.cpp)
  target_compile_definitions(test-plugin-${name} PRIVATE TEST_PLUGIN_${name})
  target_link_libraries(test-plugin-${name} PRIVATE vorto_settings Vorto::Vorto)
  set_target_properties(test-plugin-${name} PROPERTIES PREFIX "" OUTPUT_NAME ${name}
                                                       LIBRARY_OUTPUT_DIRECTORY ${test_plugin_folder})
endforeach()
