// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/TextEncodingConversion.h"

#include "Platform/CoreFoundation/CFEncodings.h"
#include "Platform/CoreFoundation/ICU.h"

#include <algorithm>
#include <memory>
#include <string_view>
#include <vector>

struct TECSnifferObject {
  std::vector<TextEncoding> encodings;
};

namespace {

using Detector = std::unique_ptr<UCharsetDetector, decltype(&ucsdet_close)>;

struct Candidate {
  TextEncoding encoding;
  ItemCount confidence;
};

const CFEncodingInfo* SniffableEncoding(TextEncoding encoding) {
  for (const CFEncodingInfo& info : CFKnownEncodings()) {
    if (info.encoding == encoding && info.detector != nullptr) return &info;
  }
  return nullptr;
}

bool IsWide(TextEncoding encoding) {
  return encoding == kCFStringEncodingUTF16BE || encoding == kCFStringEncodingUTF16LE ||
         encoding == kCFStringEncodingUTF32BE || encoding == kCFStringEncodingUTF32LE;
}

// How sure the detector is of a name, 0 when it does not name it at all.
ItemCount Confidence(const UCharsetMatch** matches, std::int32_t count, const CFEncodingInfo& info) {
  // Every even number of bytes could be UTF-16: this is what the detector says of it when nothing speaks for it.
  constexpr std::int32_t kNoEvidence = 10;
  for (std::int32_t i = 0; i < count; ++i) {
    UErrorCode error = U_ZERO_ERROR;
    const char* name = ucsdet_getName(matches[i], &error);
    const std::int32_t confidence = ucsdet_getConfidence(matches[i], &error);
    if (U_FAILURE(error) || name == nullptr || std::string_view(name) != info.detector) continue;
    return IsWide(info.encoding) && confidence <= kNoEvidence ? 0 : static_cast<ItemCount>(std::max(confidence, 0));
  }
  return 0;
}

void Copy(const std::vector<ItemCount>& counts, ItemCount* target, ItemCount capacity) {
  if (target != nullptr) std::copy_n(counts.begin(), std::min<std::size_t>(counts.size(), capacity), target);
}

}  // namespace

OSStatus TECCountAvailableSniffers(ItemCount* count) {
  if (count == nullptr) return paramErr;
  const auto known = CFKnownEncodings();
  *count = static_cast<ItemCount>(
      std::count_if(known.begin(), known.end(), [](const CFEncodingInfo& info) { return info.detector != nullptr; }));
  return noErr;
}

OSStatus TECGetAvailableSniffers(TextEncoding* encodings, ItemCount capacity, ItemCount* count) {
  if (count == nullptr || (encodings == nullptr && capacity > 0)) return paramErr;
  *count = 0;
  for (const CFEncodingInfo& info : CFKnownEncodings()) {
    if (info.detector != nullptr && *count < capacity) encodings[(*count)++] = info.encoding;
  }
  return noErr;
}

OSStatus TECCreateSniffer(TECSnifferObjectRef* sniffer, const TextEncoding* encodings, ItemCount count) {
  if (sniffer == nullptr) return paramErr;
  *sniffer = nullptr;
  if (encodings == nullptr || count == 0) return paramErr;
  if (!std::all_of(encodings, encodings + count, SniffableEncoding)) return kTextUnsupportedEncodingErr;
  *sniffer = new TECSnifferObject{std::vector<TextEncoding>(encodings, encodings + count)};
  return noErr;
}

OSStatus TECSniffTextEncoding(TECSnifferObjectRef sniffer, const std::uint8_t* bytes, ItemCount byteCount,
                              TextEncoding* encodings, ItemCount count, ItemCount* errorCounts, ItemCount errorCapacity,
                              ItemCount* featureCounts, ItemCount featureCapacity) {
  if (sniffer == nullptr || encodings == nullptr || (bytes == nullptr && byteCount > 0)) return paramErr;
  if (byteCount > static_cast<ItemCount>(kCFStringMaximumLength)) return paramErr;
  UErrorCode error = U_ZERO_ERROR;
  const Detector detector(ucsdet_open(&error), &ucsdet_close);
  if (U_FAILURE(error)) return memFullErr;
  ucsdet_setText(detector.get(), reinterpret_cast<const char*>(bytes), static_cast<std::int32_t>(byteCount), &error);
  std::int32_t matchCount = 0;
  const UCharsetMatch** matches = ucsdet_detectAll(detector.get(), &matchCount, &error);
  if (U_FAILURE(error) || matches == nullptr) matchCount = 0;

  std::vector<Candidate> candidates;
  for (ItemCount i = 0; i < count; ++i) {
    const bool known =
        std::find(sniffer->encodings.begin(), sniffer->encodings.end(), encodings[i]) != sniffer->encodings.end();
    if (!known) return kTextUnsupportedEncodingErr;
    candidates.push_back({encodings[i], Confidence(matches, matchCount, *SniffableEncoding(encodings[i]))});
  }
  std::stable_sort(candidates.begin(), candidates.end(),
                   [](const Candidate& a, const Candidate& b) { return a.confidence > b.confidence; });

  std::vector<ItemCount> errors;
  std::vector<ItemCount> features;
  for (ItemCount i = 0; i < count; ++i) {
    encodings[i] = candidates[i].encoding;
    features.push_back(candidates[i].confidence);
    if (i < errorCapacity) errors.push_back(CFCountMalformed({bytes, byteCount}, encodings[i]));
  }
  Copy(errors, errorCounts, errorCapacity);
  Copy(features, featureCounts, featureCapacity);
  return noErr;
}

OSStatus TECDisposeSniffer(TECSnifferObjectRef sniffer) {
  if (sniffer == nullptr) return paramErr;
  delete sniffer;
  return noErr;
}
