// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

// A text without case, accents and differences of width: what is equal to people is equal here.
std::string foldedForSearch(std::string_view text);

// What people look for: words apart by blanks, all of which must occur.
class PresetSearch {
 public:
  explicit PresetSearch(std::string_view words);
  bool isEmpty() const { return words_.empty(); }
  bool matches(std::string_view folded) const;  // a text that was folded

 private:
  std::vector<std::string> words_;
};

}  // namespace host
