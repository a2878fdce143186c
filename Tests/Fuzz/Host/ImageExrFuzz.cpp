// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Exr/ExrMethods.h"
#include "Tests/Fuzz/Host/ImageModuleFuzz.h"

extern "C" host::exr::Methods* VortoExrMethods();

// Linked, where the module loads it.
host::exr::Methods* host::exr::methods(std::string*) {
  return VortoExrMethods();
}
