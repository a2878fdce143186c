// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/CFBundleRegistry.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace {

struct Entry {
  const CFBundleObject* bundle;
  std::string path;
  CFStringRef identifier;
};

// In the order in which they were opened.
std::vector<Entry>& Entries() {
  // Never destroyed: bundles may be released while the process ends.
  static std::vector<Entry>& entries = *new std::vector<Entry>;
  return entries;
}

template <class Predicate>
const CFBundleObject* Find(Predicate matches) {
  const auto found = std::find_if(Entries().begin(), Entries().end(), matches);
  return found == Entries().end() ? nullptr : found->bundle;
}

}  // namespace

void CFBundleRegistryAdd(const CFBundleObject* bundle, std::string canonicalPath, CFStringRef identifier) {
  Entries().push_back({bundle, std::move(canonicalPath), identifier});
}

void CFBundleRegistryRemove(const CFBundleObject* bundle) {
  std::erase_if(Entries(), [&](const Entry& entry) { return entry.bundle == bundle; });
}

const CFBundleObject* CFBundleRegistryFindPath(const std::string& canonicalPath) {
  return Find([&](const Entry& entry) { return entry.path == canonicalPath; });
}

const CFBundleObject* CFBundleRegistryFindIdentifier(CFStringRef identifier) {
  return Find(
      [&](const Entry& entry) { return CFStringCompare(entry.identifier, identifier, 0) == kCFCompareEqualTo; });
}
