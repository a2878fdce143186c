# SPDX-License-Identifier: BSD-3-Clause
# How every file of the tree is compiled.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()
# Functions and lines for stack traces, no variables: a third of the compiler's time. The sanitizers' code costs it most when
# it is optimised further.
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O2 -g1 -DNDEBUG")
if(VORTO_SANITIZE OR VORTO_SANITIZE_THREADS)
  set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O1 -g1 -DNDEBUG")
endif()

add_library(vorto_settings INTERFACE)
target_include_directories(vorto_settings INTERFACE ${CMAKE_SOURCE_DIR}/Source)
# Results are defined to the bit: multiply-adds are never contracted.
target_compile_options(vorto_settings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                                                $<$<BOOL:${VORTO_WARNINGS_FAIL}>:-Werror> -ffp-contract=off)
# Fully optimised, this compiler sees overlaps in the standard library's own strings.
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(vorto_settings INTERFACE $<$<CONFIG:Release>:-Wno-restrict>)
endif()
if(VORTO_SANITIZE)
  target_compile_options(vorto_settings INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all
                                                  -fno-omit-frame-pointer)
  target_link_options(vorto_settings INTERFACE -fsanitize=address,undefined)
endif()
if(VORTO_SANITIZE_THREADS)
  target_compile_options(vorto_settings INTERFACE -fsanitize=thread -fno-omit-frame-pointer)
  target_link_options(vorto_settings INTERFACE -fsanitize=thread)
endif()

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)

# One place for libraries under every prefix; programs find them, and their plug-ins, relative to themselves.
set(CMAKE_INSTALL_LIBDIR lib CACHE STRING "Folder of the libraries below the prefix")
set(CMAKE_INSTALL_RPATH $ORIGIN/../lib:$ORIGIN)
