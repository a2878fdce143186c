// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/PropertyList.h"

// Property lists without ceremony.

inline PropertyList dict(std::initializer_list<std::pair<const char*, PropertyList>> entries) {
  PropertyList dictionary;
  for (const auto& [key, value] : entries) dictionary.set(key, value);
  return dictionary;
}

inline PropertyList list(std::initializer_list<PropertyList> items) {
  return PropertyList::array(items);
}

inline PropertyList text(std::string string) {
  return PropertyList::string(std::move(string));
}

// The attributes of a patch that is of one kind, with the entries of its roles.
inline PropertyList attributesOfKind(const char* kind, PropertyList roles = {}) {
  return dict({{"protocols", dict({{kind, std::move(roles)}})}});
}
