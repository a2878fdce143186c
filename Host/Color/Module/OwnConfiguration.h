// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

namespace host {

// An OpenColorIO configuration, version 2.1, of the known spaces and raw, as the text of its file. Colors go over
// linear Rec. 709; curves go on below zero as their mirror image, so that colors outside a range come back.
std::string ownConfiguration();

}  // namespace host
