// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Mach/mach.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCBitmapSlack.h"
#include "TarnCore/TCPixelFormat.h"
#include "TarnCore/kernels/Memory.h"
#include "TarnCore/kernels/YUV422.h"

#include <algorithm>

namespace {

using vorto::kernels::isStreamed;

// Copies the destination's getSize() bytes, as far as both reach.
void copyPixels(VortoBitmap& destination, const VortoBitmap& source) {
  const std::size_t bytes =
      std::min({std::size_t{destination.getSize()}, destination.accessibleBytes(), source.accessibleBytes()});
  if (bytes == 0) return;
  vorto::declareTouched(destination.data, bytes);
  vorto::declareTouched(source.data, bytes);
  vorto::kernels::copyBytes(destination.data, source.data, bytes, isStreamed(bytes));
}

// How many steps of `stride` bytes begin within `bytes`.
std::size_t stepsWithin(std::size_t bytes, std::size_t stride) {
  return (bytes + stride - 1) / stride;
}

// Limits a number of steps to those that lie wholly within both bitmaps, which it declares.
std::size_t limitedSteps(std::size_t steps, const VortoBitmap& destination, std::size_t written,
                         const VortoBitmap& source, std::size_t read) {
  const std::size_t count = std::min({steps, destination.accessibleBytes() / written, source.accessibleBytes() / read});
  vorto::declareTouched(destination.data, count * written);
  vorto::declareTouched(source.data, count * read);
  return count;
}

}  // namespace

void VortoBitmap::clone(const VortoBitmap& source) {
  if (&source == this) return;
  width = source.width;
  height = source.height;
  bitsPerChannel = source.bitsPerChannel;
  channels = source.channels;
  formatCode = source.formatCode;
  deallocateMemory();
  const VMUnsetMemory overwritten(std::min<std::size_t>(getSize(), source.accessibleBytes()));
  allocateMemory();
  copyPixels(*this, source);
}

void VortoBitmap::copy(const VortoBitmap& source) {
  if (channels == source.channels) return copyPixels(*this, source);
  convertYUVtoRGBA(this, &source);
  convertRGBAtoYUV(this, &source);
}

void VortoBitmap::convertYUVtoRGBA(VortoBitmap* destination, const VortoBitmap* source) {
  if (!destination || !source || destination->formatCode != VortoPixelFormat::ARGB8 ||
      source->formatCode != VortoPixelFormat::YUV8)
    return;
  const std::size_t pairs = limitedSteps(stepsWithin(source->getSize(), 4), *destination, 8, *source, 4);
  vorto::kernels::convertYUVtoARGB(destination->data, source->data, pairs, isStreamed(8 * pairs));
}

void VortoBitmap::convertRGBAtoYUV(VortoBitmap* destination, const VortoBitmap* source) {
  if (!destination || !source || destination->formatCode != VortoPixelFormat::YUV8 ||
      source->formatCode != VortoPixelFormat::ARGB8)
    return;
  const std::size_t size = source->getSize();
  const std::size_t reach = size > 4 ? size - 4 : 0;  // a pixel without a partner is dropped
  const std::size_t pairs = limitedSteps(stepsWithin(reach, 8), *destination, 4, *source, 8);
  vorto::kernels::convertARGBtoYUV(destination->data, source->data, pairs, isStreamed(4 * pairs));
}
