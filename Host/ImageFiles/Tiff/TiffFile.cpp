// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Tiff/TiffFile.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace host::tiff {
namespace {

constexpr tmsize_t kMostMemory = tmsize_t{1} << 31;  // at once; strips and tiles are not larger

TiffFile* fileOf(thandle_t handle) {
  return static_cast<TiffFile*>(handle);
}

}  // namespace

TiffFile::TiffFile(std::span<const std::uint8_t> bytes) : bytes_(bytes) {
  open("r");
}

TiffFile::TiffFile() : isWritten_(true) {
  open("wl");
}

TiffFile::~TiffFile() {
  if (tiff_) TIFFClose(tiff_);
}

void TiffFile::open(const char* mode) {
  TIFFOpenOptions* const options = TIFFOpenOptionsAlloc();
  if (!options) return;
  TIFFOpenOptionsSetMaxSingleMemAlloc(options, kMostMemory);
  TIFFOpenOptionsSetErrorHandlerExtR(options, keepError, this);
  TIFFOpenOptionsSetWarningHandlerExtR(options, dropWarning, this);
  tiff_ = TIFFClientOpenExt("picture", mode, this, read, write, seek, close, size, map, unmap, options);
  TIFFOpenOptionsFree(options);
}

int TiffFile::keepError(TIFF*, void* file, const char*, const char* format, va_list arguments) {
  auto* const self = static_cast<TiffFile*>(file);
  if (!self->error_.empty()) return 1;
  char text[256];
  std::vsnprintf(text, sizeof text, format, arguments);
  self->error_ = text;
  std::replace(self->error_.begin(), self->error_.end(), '\n', ' ');
  while (!self->error_.empty() && (self->error_.back() == ' ' || self->error_.back() == '.')) self->error_.pop_back();
  if (self->error_.empty()) self->error_ = "unknown error";
  return 1;
}

tmsize_t TiffFile::read(thandle_t handle, void* to, tmsize_t size) {
  TiffFile* const self = fileOf(handle);
  if (size < 0 || self->at_ >= self->end()) return 0;
  const auto count =
      static_cast<std::size_t>(std::min<std::uint64_t>(static_cast<std::uint64_t>(size), self->end() - self->at_));
  std::memcpy(to, (self->isWritten_ ? self->written_.data() : self->bytes_.data()) + self->at_, count);
  self->at_ += count;
  return static_cast<tmsize_t>(count);
}

tmsize_t TiffFile::write(thandle_t handle, void* from, tmsize_t size) {
  TiffFile* const self = fileOf(handle);
  const auto count = static_cast<std::size_t>(size);
  if (!self->isWritten_ || size < 0) return -1;
  if (self->at_ + count > self->written_.size()) self->written_.resize(static_cast<std::size_t>(self->at_) + count);
  std::memcpy(self->written_.data() + self->at_, from, count);
  self->at_ += count;
  return size;
}

toff_t TiffFile::seek(thandle_t handle, toff_t offset, int whence) {
  TiffFile* const self = fileOf(handle);
  self->at_ = offset + (whence == SEEK_CUR ? self->at_ : whence == SEEK_END ? self->end() : 0);
  return self->at_;
}

int TiffFile::map(thandle_t handle, void** base, toff_t* size) {
  TiffFile* const self = fileOf(handle);
  if (self->isWritten_) return 0;
  *base = const_cast<std::uint8_t*>(self->bytes_.data());
  *size = self->bytes_.size();
  return 1;
}

toff_t TiffFile::size(thandle_t handle) {
  return fileOf(handle)->end();
}

}  // namespace host::tiff
