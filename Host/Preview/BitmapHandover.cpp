// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Preview/BitmapHandover.h"

#include "Host/Messages/Failure.h"
#include "Platform/Mach/mach.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCBitmapSharing.h"
#include "TarnCore/TCPixelLayout.h"

#include <sys/resource.h>

#include <cstring>
#include <string>

namespace host {
namespace {

enum class Way : std::uint8_t { Pixels, Entry };

// Bytes of pixels up to which a descriptor for each bitmap would cost more than a copy.
constexpr std::size_t kSmall = 65536;

// Shared memory counts as a file.
bool mayBeShared(std::size_t bytes) {
  rlimit limit{};
  return ::getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY || bytes <= limit.rlim_cur;
}

void putPixels(MessageWriter& message, const VortoBitmap& bitmap) {
  message.value(Way::Pixels);
  message.value(bitmap.formatCode);
  message.value(bitmap.width);
  message.value(bitmap.height);
  const std::size_t row = bytesPerRow(bitmap) - bitmap.rowPadding;
  message.value<std::uint64_t>(row * bitmap.height);
  for (std::size_t y = 0; y < bitmap.height; ++y) message.append({bitmap.data + y * bytesPerRow(bitmap), row});
}

BitmapRef takePixels(MessageReader& message) {
  const auto format = message.value<std::uint32_t>();
  const auto width = message.value<std::uint32_t>();
  const auto height = message.value<std::uint32_t>();
  const std::span<const std::uint8_t> pixels = message.view();
  const VortoPixelLayout& layout = TCPixelLayoutOf(format);
  const bool isWhole = layout.isExchanged && width > 0 && height > 0 &&
                       fitsBitmap(width, height, layout.bytesPerPixel()) &&
                       std::uint64_t{width} * height * layout.bytesPerPixel() == pixels.size();
  if (!isWhole) throw Failure(ExitCode::Unexpected, "a helper process sent a picture that is none");
  const MutableBitmapRef bitmap = newUnsetBitmap(width, height, format, "a picture");
  std::memcpy(bitmap->data, pixels.data(), pixels.size());
  return bitmap;
}

}  // namespace

void putBitmap(MessageWriter& message, const VortoBitmap& bitmap, int entries) {
  const std::size_t bytes = bytesPerRow(bitmap) * bitmap.height;
  if (bytes <= kSmall || !mayBeShared(bitmap.allocSize)) return putPixels(message, bitmap);
  message.value(Way::Entry);
  const int result = TCSendBitmap(bitmap, entries);
  if (result == KERN_SUCCESS) return;
  throw Failure(ExitCode::Unexpected,
                "a picture could not be handed to another process (" + std::to_string(result) + ")");
}

BitmapRef takeBitmap(MessageReader& message, int entries) {
  const auto way = message.value<Way>();
  if (way == Way::Pixels) return takePixels(message);
  int result = KERN_INVALID_VALUE;
  BitmapRef bitmap;
  if (way == Way::Entry) bitmap.reset(TCReceiveBitmap(entries, &result));
  if (!bitmap) {
    throw Failure(ExitCode::Unexpected, "a helper process gave no picture (" + std::to_string(result) + ")");
  }
  sampleTypeOfResult(*bitmap, "a helper process");
  return bitmap;
}

}  // namespace host
