// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/CoreFoundation/CFString.h"

#include <string>
#include <string_view>

class PropertyList;

// A bundle: a folder NAME.bundle or NAME.plugin with
//
//   Contents/Info.plist                              CFBundleIdentifier, CFBundleExecutable, CFBundleDevelopmentRegion
//   Contents/Linux/EXECUTABLE                        the code, when CFBundleExecutable names it
//   Contents/Resources/FILE                          resources
//   Contents/Resources/LANGUAGE.lproj/FILE           resources in one language, string tables TABLE.strings among them
//
// Languages are tried in the user's order (LANGUAGE, LC_ALL, LC_MESSAGES, LANG; "pt_BR" tries pt_BR, pt-BR and pt),
// then the bundle's CFBundleDevelopmentRegion, then "en". Under "C" and "POSIX" only the latter two are.
using CFBundleRef = const struct CFBundleObject*;

// Opens the bundle at a path, or retains the one that is open there already. Null, with the cause in *reason (which may
// be null; it does not repeat the path), when the folder is no bundle: another extension, no readable Info.plist, or no
// CFBundleIdentifier. An open bundle is found by its identifier until it is released for the last time.
TARN_EXPORT CFBundleRef CFBundleCreate(CFAllocatorRef allocator, const std::string& path,
                                       std::string* reason = nullptr);

// The open bundle of that identifier (of several, the one opened first). When none is, the framework's folders are
// searched for bundles with the extension "bundle": those added with CFBundleAddSearchFolder, then the folder of the
// library that this code is linked into, ../lib, ../share/vorto and ../../share/vorto seen from it. What is found there
// stays open for the life of the process. Null when there is no such bundle.
TARN_EXPORT CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef identifier);
// Adds a folder that holds bundles; folders added later are searched later. A bundle that cannot be opened is reported
// on standard error by path and reason, and skipped.
TARN_EXPORT void CFBundleAddSearchFolder(const std::string& folder);

// Not retained: the caller does not own it. Null for a null bundle.
TARN_EXPORT CFStringRef CFBundleGetIdentifier(CFBundleRef bundle);
TARN_EXPORT std::string CFBundleGetPath(CFBundleRef bundle);  // absolute, without symbolic links
// The whole of Info.plist; an empty dictionary for a null bundle.
TARN_EXPORT const PropertyList& CFBundleGetInfoDictionary(CFBundleRef bundle);

// Where the code is, whether or not the file exists. Empty, with the cause, when CFBundleExecutable is missing or is no
// plain file name: a name with '/' or ".." in it is refused.
TARN_EXPORT std::string CFBundleCopyExecutablePath(CFBundleRef bundle, std::string* reason = nullptr);

// The path of the resource "name.type" ("name" when type is empty): directly in Resources, else in the first language
// that has it. Empty when there is none, or when a part is no plain file name.
TARN_EXPORT std::string CFBundleCopyResourcePath(CFBundleRef bundle, std::string_view name, std::string_view type);

// The text for a key in a string table (null: "Localizable"), from the first language whose table has the key. Without
// one, and for a null bundle: `value`, or the key when `value` is null. Owned by the caller; null only for a null key
// without a value. A malformed table is reported on standard error once, and counts as empty.
TARN_EXPORT CFStringRef CFBundleCopyLocalizedString(CFBundleRef bundle, CFStringRef key, CFStringRef value,
                                                    CFStringRef tableName);
