// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCCloseNames.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <utility>

namespace {

constexpr std::size_t kMostNames = 3;
constexpr std::size_t kLongestName = 256;    // longer ones are not compared
constexpr std::size_t kMostCells = 1 << 18;  // pairs of letters that are compared for one name

char folded(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

// The distance of two names, or more than `farthest` when it is more: nearer ones never lead far from the diagonal.
std::size_t distance(std::string_view a, std::string_view b, std::size_t farthest) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    const std::size_t first = i > farthest ? i - farthest : 0;
    const std::size_t end = std::min(b.size(), i + farthest + 1);
    std::size_t diagonal = std::exchange(row[first], first == 0 ? i + 1 : farthest + 1);
    for (std::size_t j = first; j < end; ++j) {
      const std::size_t replaced = diagonal + (folded(a[i]) == folded(b[j]) ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

// Compares names as long as that takes a bounded time.
class Comparison {
 public:
  explicit Comparison(std::string_view name) : name_(name), farthest_(std::max<std::size_t>(2, name.size() / 3)) {}

  // Nothing when the candidate is not close, or too much has been compared.
  std::optional<std::size_t> distanceTo(std::string_view candidate) {
    const std::size_t shorter = std::min(name_.size(), candidate.size());
    const std::size_t longer = std::max(name_.size(), candidate.size());
    const std::size_t cells = shorter * std::min(longer, 2 * farthest_ + 1);
    if (longer > kLongestName || longer - shorter > farthest_ || cells > cells_) {
      return std::nullopt;
    }
    cells_ -= cells;
    const std::size_t away = distance(name_, candidate, farthest_);
    return away <= farthest_ ? std::optional(away) : std::nullopt;
  }

 private:
  std::string_view name_;
  std::size_t farthest_;
  std::size_t cells_ = kMostCells;
};

}  // namespace

std::vector<std::string> QCCloseNames(std::string_view name, const std::vector<std::string>& known) {
  std::vector<std::pair<std::size_t, const std::string*>> close;
  Comparison comparison(name);
  for (const std::string& candidate : known) {
    if (const auto away = comparison.distanceTo(candidate)) {
      close.emplace_back(*away, &candidate);
    }
  }
  std::stable_sort(close.begin(), close.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<std::string> names;
  for (std::size_t i = 0; i < close.size() && i < kMostNames; ++i) {
    names.push_back(*close[i].second);
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
