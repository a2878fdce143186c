// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/ReadTimeCode.h"

#include "Host/Clips/TimeCodes.h"

#include <string>

namespace host {
namespace {

const char* statedIn(const AVDictionary* metadata) {
  const AVDictionaryEntry* entry = av_dict_get(metadata, "timecode", nullptr, 0);
  return entry ? entry->value : nullptr;
}

}  // namespace

std::optional<TimeCode> timeCodeOf(const AVFormatContext& input, const AVStream& stream, AVRational rate) {
  const char* text = statedIn(stream.metadata);
  if (!text) text = statedIn(input.metadata);
  for (unsigned i = 0; !text && i < input.nb_streams; ++i) text = statedIn(input.streams[i]->metadata);
  return text ? packedTimeCode(text, av_q2d(rate)) : std::nullopt;
}

}  // namespace host
