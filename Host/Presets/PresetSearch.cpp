// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Presets/PresetSearch.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>

namespace host {

std::string foldedForSearch(std::string_view text) {
  UErrorCode error = U_ZERO_ERROR;
  const icu::Normalizer2* form = icu::Normalizer2::getNFKDInstance(error);
  icu::UnicodeString whole = icu::UnicodeString::fromUTF8({text.data(), static_cast<int32_t>(text.size())});
  if (form && U_SUCCESS(error)) whole = form->normalize(whole.foldCase(), error);
  if (U_FAILURE(error)) return std::string(text);
  icu::UnicodeString folded;
  for (int32_t i = 0; i < whole.length(); i = whole.moveIndex32(i, 1)) {
    const UChar32 character = whole.char32At(i);
    if (u_charType(character) != U_NON_SPACING_MARK) folded.append(character);
  }
  std::string bytes;
  folded.foldCase().toUTF8String(bytes);
  return bytes;
}

PresetSearch::PresetSearch(std::string_view words) {
  const std::string folded = foldedForSearch(words);
  constexpr const char* kBlanks = " \t\n\r";
  for (std::size_t begin = 0; (begin = folded.find_first_not_of(kBlanks, begin)) != std::string::npos;) {
    const std::size_t end = std::min(folded.find_first_of(kBlanks, begin), folded.size());
    words_.push_back(folded.substr(begin, end - begin));
    begin = end;
  }
}

bool PresetSearch::matches(std::string_view folded) const {
  return std::ranges::all_of(words_, [&](const std::string& word) { return folded.find(word) != std::string::npos; });
}

}  // namespace host
