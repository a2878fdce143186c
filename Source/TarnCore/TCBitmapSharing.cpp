// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCBitmapSharing.h"

#include "Platform/Mach/mach.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelFormat.h"

#include <cstdint>
#include <memory>

namespace {

struct Note {
  std::uint32_t width;
  std::uint32_t height;
  std::uint32_t bitsPerChannel;
  std::uint32_t channels;
  std::uint32_t rowPadding;
  std::uint32_t formatCode;
  std::uint32_t allocSize;
};

// The table counts a pair of 4:2:2 pixels.
std::uint32_t channelsOf(std::uint32_t formatCode) {
  const std::uint32_t perEntry =
      VortoPixelFormat::getBitsPerPixel(formatCode) / VortoPixelFormat::getBitsPerChannel(formatCode);
  return formatCode == VortoPixelFormat::YUV8 ? perEntry / 2 : perEntry;
}

bool isBelievable(const Note& note, vm_size_t entrySize) {
  if (note.formatCode > VortoPixelFormat::RGBAFloat || note.formatCode == VortoPixelFormat::ARGB8NoAlpha) return false;
  if (note.bitsPerChannel != VortoPixelFormat::getBitsPerChannel(note.formatCode)) return false;
  if (note.channels != channelsOf(note.formatCode)) return false;
  if (note.allocSize == 0 || note.allocSize > entrySize) return false;
  const std::uint64_t rowBytes =
      std::uint64_t{note.width} * note.channels * (note.bitsPerChannel / 8) + note.rowPadding;
  return note.height == 0 || rowBytes <= note.allocSize / note.height;
}

}  // namespace

int TCSendBitmap(const VortoBitmap& bitmap, int socket) {
  const Note note{bitmap.width,      bitmap.height,     bitmap.bitsPerChannel, bitmap.channels,
                  bitmap.rowPadding, bitmap.formatCode, bitmap.allocSize};
  if (bitmap.memoryEntry != MACH_PORT_NULL && !isBelievable(note, note.allocSize)) return KERN_INVALID_VALUE;
  return mach_send_memory_entry(socket, bitmap.memoryEntry, &note, sizeof note);
}

VortoBitmap* TCReceiveBitmap(int socket, int* result) {
  int ignored;
  int& code = result ? *result : ignored;
  Note note{};
  std::size_t noteSize = 0;
  vm_size_t entrySize = 0;
  auto bitmap = std::make_unique<VortoBitmap>();
  code = mach_receive_memory_entry(socket, &bitmap->memoryEntry, &entrySize, &note, sizeof note, &noteSize);
  if (code != KERN_SUCCESS) return nullptr;
  if (noteSize != sizeof note || !isBelievable(note, entrySize)) {
    code = KERN_INVALID_VALUE;
    return nullptr;
  }
  bitmap->width = note.width;
  bitmap->height = note.height;
  bitmap->bitsPerChannel = note.bitsPerChannel;
  bitmap->channels = note.channels;
  bitmap->rowPadding = note.rowPadding;
  bitmap->formatCode = note.formatCode;
  bitmap->allocSize = note.allocSize;
  bitmap->mapIntoMemory();
  if (!bitmap->data) {
    code = KERN_NO_SPACE;
    return nullptr;
  }
  return bitmap.release();
}
