// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Bindings/Frei0r/In/Describing.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace vorto::frei0r {

// What foreign plug-ins said of themselves, kept from run to run in the file "frei0r" of the user's cache folder. A
// file that is missing, damaged, or of another version of vorto-frei0r-runner counts as empty; one that cannot be
// written is left.
class DescriptionCache {
 public:
  DescriptionCache();  // reads it

  // Of a file in this state (NSFileState()). Null when it is not known; after a day also where another try may end
  // otherwise.
  const Report* find(const std::string& path, const std::string& state) const;
  void add(const std::string& path, const std::string& state, Described described);
  void write() const;  // with what was there before, as long as the plug-ins are

 private:
  struct Entry {
    std::string state;
    std::int64_t tried = 0;  // seconds since 1970; 0: for good
    Report report;
  };
  bool readEntries(std::span<const std::uint8_t> bytes);

  std::string heading_;  // tells versions apart
  std::map<std::string, Entry> entries_;
};

}  // namespace vorto::frei0r
