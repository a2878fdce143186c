// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/CFLocale.h"

#include "Platform/CoreFoundation/ICU.h"

#include <algorithm>
#include <cstdlib>
#include <initializer_list>

namespace {

std::string FirstSet(std::initializer_list<const char*> names) {
  for (const char* name : names) {
    const char* value = std::getenv(name);
    if (value != nullptr && *value != '\0') return value;
  }
  return {};
}

// The locale without its encoding and modifier.
std::string_view BaseName(std::string_view locale) {
  return locale.substr(0, locale.find_first_of(".@"));
}

bool IsPortable(std::string_view locale) {
  return BaseName(locale) == "C" || BaseName(locale) == "POSIX";
}

bool IsLanguageName(std::string_view name) {
  constexpr std::string_view kAllowed = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-";
  return !name.empty() && name.find_first_not_of(kAllowed) == std::string_view::npos;
}

}  // namespace

std::string CFCollationLocale() {
  const std::string locale = FirstSet({"LC_ALL", "LC_COLLATE", "LANG"});
  if (IsPortable(locale) || !IsLanguageName(BaseName(locale))) return {};
  char name[ULOC_FULLNAME_CAPACITY];
  UErrorCode error = U_ZERO_ERROR;
  const std::int32_t length = uloc_canonicalize(locale.c_str(), name, ULOC_FULLNAME_CAPACITY, &error);
  if (U_FAILURE(error) || error == U_STRING_NOT_TERMINATED_WARNING) return {};
  return std::string(name, static_cast<std::size_t>(length));
}

std::vector<std::string> CFLanguageForms(std::string_view language) {
  std::vector<std::string> forms;
  std::string name(BaseName(language));
  if (!IsLanguageName(name)) return forms;
  for (;;) {
    std::replace(name.begin(), name.end(), '-', '_');
    forms.push_back(name);
    const std::size_t end = name.rfind('_');
    if (end == std::string::npos) return forms;
    std::replace(name.begin(), name.end(), '_', '-');
    forms.push_back(name);
    name.resize(end);
    if (name.empty()) return forms;
  }
}

std::vector<std::string> CFPreferredLanguages() {
  const std::string locale = FirstSet({"LC_ALL", "LC_MESSAGES", "LANG"});
  if (IsPortable(locale)) return {};
  const std::string list = FirstSet({"LANGUAGE"});
  const std::string_view wanted = list.empty() ? locale : list;
  std::vector<std::string> languages;
  for (std::size_t start = 0; start <= wanted.size();) {
    const std::size_t end = std::min(wanted.find(':', start), wanted.size());
    const std::string_view language = wanted.substr(start, end - start);
    if (!IsPortable(language)) {
      const std::vector<std::string> forms = CFLanguageForms(language);
      languages.insert(languages.end(), forms.begin(), forms.end());
    }
    start = end + 1;
  }
  return languages;
}
