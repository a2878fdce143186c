// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/CoreFoundation/CFString.h"

#include <string>

// The open bundles of the process, each under its canonical path and its identifier. It knows nothing else of them, and
// keeps none alive: a bundle enters it when it is opened and leaves it when it is destroyed.

struct CFBundleObject;

// The identifier must outlive the entry.
void CFBundleRegistryAdd(const CFBundleObject* bundle, std::string canonicalPath, CFStringRef identifier);
void CFBundleRegistryRemove(const CFBundleObject* bundle);
// Of several, the one opened first; null when there is none.
const CFBundleObject* CFBundleRegistryFindPath(const std::string& canonicalPath);
const CFBundleObject* CFBundleRegistryFindIdentifier(CFStringRef identifier);
