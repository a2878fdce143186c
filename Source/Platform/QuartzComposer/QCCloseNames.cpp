// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCCloseNames.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace {

constexpr std::size_t kMostNames = 3;
constexpr std::size_t kLongestName = 256;  // longer ones are not compared

char folded(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

std::size_t distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced = diagonal + (folded(a[i]) == folded(b[j]) ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

}  // namespace

std::vector<std::string> QCCloseNames(std::string_view name, const std::vector<std::string>& known) {
  std::vector<std::pair<std::size_t, std::string>> close;
  if (name.size() <= kLongestName) {
    const std::size_t farthest = std::max<std::size_t>(2, name.size() / 3);
    for (const std::string& candidate : known) {
      const std::size_t away = candidate.size() <= kLongestName ? distance(name, candidate) : farthest + 1;
      if (away <= farthest) {
        close.emplace_back(away, candidate);
      }
    }
  }
  std::stable_sort(close.begin(), close.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<std::string> names;
  for (std::size_t i = 0; i < close.size() && i < kMostNames; ++i) {
    names.push_back(std::move(close[i].second));
  }
  return names;
}

std::string QCCloseNamesHint(std::string_view name, const std::vector<std::string>& known) {
  const std::vector<std::string> close = QCCloseNames(name, known);
  std::string hint;
  for (std::size_t i = 0; i < close.size(); ++i) {
    hint += (i == 0 ? "; did you mean \"" : " or \"") + close[i] + '"';
  }
  return hint.empty() ? hint : hint + '?';
}
