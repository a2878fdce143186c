// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/AvErrors.h"

extern "C" {
#include <libavutil/error.h>
#include <libavutil/log.h>
}

#include <array>
#include <cstdarg>
#include <cstdio>

namespace host {
namespace {

// Codecs log on threads of their own, which keep nothing.
thread_local bool isKept = false;
thread_local std::array<char, 200> kept;
thread_local bool isFileDamaged = false;

bool isOfDemuxer(void* object) {
  const AVClass* kind = object ? *static_cast<AVClass**>(object) : nullptr;
  if (!kind) return false;
  return (kind->get_category ? kind->get_category(object) : kind->category) == AV_CLASS_CATEGORY_DEMUXER;
}

void log(void* object, int level, const char* format, va_list values) {
  if (level > AV_LOG_ERROR || !isKept) return;
  isFileDamaged = isFileDamaged || isOfDemuxer(object);
  if (kept[0] != 0) return;
  std::vsnprintf(kept.data(), kept.size(), format, values);
}

}  // namespace

void silenceLibraries() {
  av_log_set_callback(log);
}

LoggedError::LoggedError() {
  kept[0] = 0;
  isFileDamaged = false;
  isKept = true;
}

LoggedError::~LoggedError() {
  isKept = false;
}

bool LoggedError::isOfFile() const {
  return isFileDamaged;
}

std::string LoggedError::reason(int error) const {
  std::string logged = kept.data();
  while (!logged.empty() && static_cast<unsigned char>(logged.back()) <= ' ') logged.pop_back();
  return avErrorText(error) + (logged.empty() ? "" : " (" + logged + ")");
}

std::string avErrorText(int error) {
  std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
  av_strerror(error, text.data(), text.size());
  return text.data();
}

}  // namespace host
