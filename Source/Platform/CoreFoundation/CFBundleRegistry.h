// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/CoreFoundation/CFBundle.h"

#include <string>
#include <vector>

// The open bundles of the process, and where the framework's own are looked for.

void CFBundleRegistryAdd(CFBundleRef bundle);  // not retained
void CFBundleRegistryRemove(CFBundleRef bundle);
CFBundleRef CFBundleRegistryFindPath(const std::string& canonicalPath);

// The folders searched for a library or program that lies in `folder`.
std::vector<std::string> CFBundleFoldersBeside(const std::string& folder);
