#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelFormat.h"
#include "TarnCore/kernels/YUV422.h"

#include <algorithm>
#include <cstring>

namespace {

// Copies the destination's getSize() bytes, as far as both reach.
void copyBytes(VortoBitmap& destination, const VortoBitmap& source) {
  const std::size_t bytes =
      std::min({std::size_t{destination.getSize()}, destination.accessibleBytes(), source.accessibleBytes()});
  if (bytes > 0) std::memmove(destination.data, source.data, bytes);
}

// How many steps of `stride` bytes begin within `bytes`.
std::size_t stepsWithin(std::size_t bytes, std::size_t stride) {
  return (bytes + stride - 1) / stride;
}

// Limits a number of steps to those that lie wholly within both bitmaps.
std::size_t limitedSteps(std::size_t steps, const VortoBitmap& destination, std::size_t written,
                         const VortoBitmap& source, std::size_t read) {
  return std::min({steps, destination.accessibleBytes() / written, source.accessibleBytes() / read});
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
  allocateMemory();
  copyBytes(*this, source);
}

void VortoBitmap::copy(const VortoBitmap& source) {
  if (channels == source.channels) return copyBytes(*this, source);
  convertYUVtoRGBA(this, &source);
  convertRGBAtoYUV(this, &source);
}

void VortoBitmap::convertYUVtoRGBA(VortoBitmap* destination, const VortoBitmap* source) {
  if (!destination || !source || destination->formatCode != VortoPixelFormat::ARGB8 ||
      source->formatCode != VortoPixelFormat::YUV8)
    return;
  const std::size_t pairs = limitedSteps(stepsWithin(source->getSize(), 4), *destination, 8, *source, 4);
  vorto::kernels::convertYUVtoARGB(destination->data, source->data, pairs);
}

void VortoBitmap::convertRGBAtoYUV(VortoBitmap* destination, const VortoBitmap* source) {
  if (!destination || !source || destination->formatCode != VortoPixelFormat::YUV8 ||
      source->formatCode != VortoPixelFormat::ARGB8)
    return;
  const std::size_t size = source->getSize();
  const std::size_t reach = size > 4 ? size - 4 : 0;  // a pixel without a partner is dropped
  const std::size_t pairs = limitedSteps(stepsWithin(reach, 8), *destination, 4, *source, 8);
  vorto::kernels::convertARGBtoYUV(destination->data, source->data, pairs);
}
