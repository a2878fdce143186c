# SPDX-License-Identifier: BSD-3-Clause
# Stands for the file of its name in the folder of an architecture, where projects without a compiler do not look. The same for
# all architectures; projects with a compiler find their own.
get_filename_component(Vorto_file "${CMAKE_CURRENT_LIST_FILE}" NAME)
file(GLOB Vorto_files "${CMAKE_CURRENT_LIST_DIR}/../../../lib/*/cmake/Vorto/${Vorto_file}")
if(CMAKE_LIBRARY_ARCHITECTURE OR NOT Vorto_files)
  set(PACKAGE_VERSION_UNSUITABLE TRUE)
else()
  list(GET Vorto_files 0 Vorto_file)
  include("${Vorto_file}")
endif()
