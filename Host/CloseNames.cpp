#include "Host/CloseNames.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace host {
namespace {

char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Single characters inserted, removed or replaced; letters of either case are the same.
std::size_t editDistance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> above(b.size() + 1);
  std::iota(above.begin(), above.end(), std::size_t{0});
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t i = 1; i <= a.size(); ++i) {
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t replaced = above[j - 1] + (lower(a[i - 1]) == lower(b[j - 1]) ? 0 : 1);
      row[j] = std::min({replaced, above[j] + 1, row[j - 1] + 1});
    }
    std::swap(above, row);
  }
  return above[b.size()];
}

bool beginsWith(const std::string& text, const std::string& beginning) {
  return !beginning.empty() && text.size() >= beginning.size() &&
         std::equal(beginning.begin(), beginning.end(), text.begin(),
                    [](char a, char b) { return lower(a) == lower(b); });
}

constexpr std::size_t LongestComparedName = 200;

}  // namespace

std::string closeNamesHint(const std::string& unknown, const std::vector<std::string>& known,
                           const std::string& otherwise) {
  std::vector<std::pair<std::size_t, std::string>> close;
  for (const std::string& name : known) {
    if (unknown.size() > LongestComparedName || name.size() > LongestComparedName) continue;
    const std::size_t distance = beginsWith(name, unknown) ? 0 : editDistance(unknown, name);
    if (distance <= std::max(unknown.size(), name.size()) / 3) close.emplace_back(distance, '"' + name + '"');
  }
  if (close.empty()) return "; " + otherwise;
  std::stable_sort(close.begin(), close.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<std::string> names;
  for (const auto& entry : close) {
    if (names.size() < 3) names.push_back(entry.second);
  }
  return "; did you mean " + joinedNames(names, " or ") + "?";
}

std::string joinedNames(const std::vector<std::string>& names, const std::string& lastSeparator) {
  std::string text;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i > 0) text += i + 1 == names.size() ? lastSeparator : ", ";
    text += names[i];
  }
  return text;
}

}  // namespace host
