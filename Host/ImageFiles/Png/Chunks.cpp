// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Png/Chunks.h"

#include <libdeflate.h>

namespace host {
namespace {

constexpr std::size_t kOverhead = 12;  // length, type and checksum, four bytes each

}  // namespace

bool PngChunks::next(PngChunk* chunk) {
  if (position_ > file_.size() || file_.size() - position_ < kOverhead) return false;
  const std::size_t length = pngNumber(&file_[position_]);
  if (length > file_.size() - position_ - kOverhead) return false;
  const auto typeAndData = file_.subspan(position_ + 4, length + 4);
  if (libdeflate_crc32(0, typeAndData.data(), typeAndData.size()) != pngNumber(&file_[position_ + 8 + length])) {
    return false;
  }
  chunk->type = pngNumber(typeAndData.data());
  chunk->data = typeAndData.subspan(4);
  position_ += length + kOverhead;
  return true;
}

void appendPngChunk(std::uint32_t type, std::span<const std::uint8_t> data, std::vector<std::uint8_t>* file) {
  appendPngNumber(static_cast<std::uint32_t>(data.size()), file);
  const std::size_t start = file->size();
  appendPngNumber(type, file);
  file->insert(file->end(), data.begin(), data.end());
  appendPngNumber(libdeflate_crc32(0, file->data() + start, file->size() - start), file);
}

}  // namespace host
