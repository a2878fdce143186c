// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/PropertyList.h"

#include <cstdint>
#include <string_view>
#include <vector>

// Binary lists put together byte by byte, as other writers, or hostile ones, make them.
struct BinaryList {
  std::vector<PropertyList::Bytes> objects;
  std::uint64_t root = 0;
  unsigned referenceSize = 1;
  unsigned offsetSize = 2;

  static void number(PropertyList::Bytes& out, std::uint64_t value, unsigned size) {
    for (unsigned i = size; i-- > 0;) {
      out.push_back(i >= 8 ? 0 : static_cast<std::uint8_t>(value >> (8 * i)));
    }
  }
  static PropertyList::Bytes text(std::string_view ascii) {
    PropertyList::Bytes out{static_cast<std::uint8_t>(0x50 + ascii.size())};  // up to 14 characters
    out.insert(out.end(), ascii.begin(), ascii.end());
    return out;
  }
  // A container: kind 0xA0 or 0xD0 and its references, with a count of any width.
  PropertyList::Bytes container(std::uint8_t kind, std::uint64_t count, const std::vector<std::uint64_t>& references,
                                unsigned countWidth = 0) const {
    PropertyList::Bytes out;
    if (countWidth == 0) {
      out.push_back(static_cast<std::uint8_t>(kind | count));
    } else {
      out.push_back(kind | 0xF);
      out.push_back(countWidth == 1 ? 0x10 : countWidth == 2 ? 0x11 : countWidth == 4 ? 0x12 : 0x13);
      number(out, count, countWidth);
    }
    for (const std::uint64_t each : references) {
      number(out, each, referenceSize);
    }
    return out;
  }
  PropertyList::Bytes array(const std::vector<std::uint64_t>& references, unsigned countWidth = 0) const {
    return container(0xA0, references.size(), references, countWidth);
  }

  PropertyList::Bytes bytes() const {
    PropertyList::Bytes out{'b', 'p', 'l', 'i', 's', 't', '0', '0'};
    std::vector<std::uint64_t> offsets;
    for (const auto& object : objects) {
      offsets.push_back(out.size());
      out.insert(out.end(), object.begin(), object.end());
    }
    const std::uint64_t table = out.size();
    for (const std::uint64_t each : offsets) {
      number(out, each, offsetSize);
    }
    out.insert(out.end(), 6, 0);
    out.push_back(static_cast<std::uint8_t>(offsetSize));
    out.push_back(static_cast<std::uint8_t>(referenceSize));
    number(out, objects.size(), 8);
    number(out, root, 8);
    number(out, table, 8);
    return out;
  }
};
