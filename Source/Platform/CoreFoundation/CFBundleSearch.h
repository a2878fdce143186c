// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

// The folder of the library, or of the program, that this room is linked into. Empty when the system does not tell.
std::string CFOwnFolder();

// The folders searched for the framework's own bundles when the library or program lies in `folder`.
std::vector<std::string> CFBundleFoldersBeside(const std::string& folder);
