// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCColor.h"
#include "TarnCore/TCPixelFormat.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

// Every whole-image operation on pairs of bitmaps, in one of two ways.
//
// On borrowed memory the descriptors are nonsense: sizes that do not belong together, codes that do not fit the
// channels, crops outside, no memory at all; the two may overlap or be one. Memory ends at a page that must not be
// touched, and what lies before it is compared afterwards.
//
// On memory of their own, bitmaps are made, cloned, cleared and mapped too, sizes that wrap included, and the address
// sanitizer watches the slack behind their pixels.

namespace {

class Input {
 public:
  Input(const std::uint8_t* bytes, std::size_t size) : bytes_(bytes), size_(size) {}
  std::uint32_t byte() {
    if (size_ == 0) return 0;
    --size_;
    return *bytes_++;
  }
  // Mostly small, sometimes anything.
  std::uint32_t number() {
    const std::uint32_t kind = byte();
    if (kind < 200) return kind % 40;
    if (kind < 250) return byte() << 8 | byte();
    return byte() << 24 | byte() << 16 | byte() << 8 | byte();
  }

 private:
  const std::uint8_t* bytes_;
  std::size_t size_;
};

constexpr std::size_t GuardBytes = 4096;
constexpr std::uint8_t GuardByte = 0x5A;
constexpr std::size_t MaximumBytes = std::size_t{1} << 20;
constexpr std::size_t StreamedBytes = std::size_t{17} << 20;  // written past the caches

std::size_t memorySize(Input& input) {
  return input.byte() == 255 ? StreamedBytes + input.byte() : input.number() % MaximumBytes;
}

// Pixels between a watched margin and a page that faults.
class GuardedMemory {
 public:
  GuardedMemory(std::size_t size, Input& input) : size_(size) {
    const std::size_t page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    mapped_ = (GuardBytes + size + page - 1) / page * page + page;
    start_ =
        static_cast<std::uint8_t*>(mmap(nullptr, mapped_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    if (start_ == MAP_FAILED) std::abort();
    if (mprotect(start_ + mapped_ - page, page, PROT_NONE) != 0) std::abort();
    pixels_ = start_ + mapped_ - page - size;
    std::memset(start_, GuardByte, static_cast<std::size_t>(pixels_ - start_));
    for (std::size_t i = 0; i < size && i < 64; ++i) pixels_[i] = static_cast<std::uint8_t>(input.byte());
  }
  ~GuardedMemory() {
    for (const std::uint8_t* at = start_; at < pixels_; ++at) {
      if (*at != GuardByte) std::abort();
    }
    munmap(start_, mapped_);
  }
  GuardedMemory(const GuardedMemory&) = delete;
  GuardedMemory& operator=(const GuardedMemory&) = delete;
  std::uint8_t* pixels() const { return pixels_; }
  std::size_t size() const { return size_; }

 private:
  std::size_t size_;
  std::size_t mapped_ = 0;
  std::uint8_t* start_ = nullptr;
  std::uint8_t* pixels_ = nullptr;
};

void describe(VortoBitmap& bitmap, Input& input) {
  bitmap.formatCode = input.byte() % 11;
  bitmap.width = input.number();
  bitmap.height = input.number();
  bitmap.bitsPerChannel = VortoPixelFormat::getBitsPerChannel(bitmap.formatCode);
  bitmap.channels = VortoPixelFormat::getBitsPerPixel(bitmap.formatCode) / bitmap.bitsPerChannel;
  if (bitmap.formatCode == VortoPixelFormat::YUV8) bitmap.channels = 2;
  if (input.byte() > 240) bitmap.channels = input.number();
  if (input.byte() > 240) bitmap.bitsPerChannel = input.number();
  if (input.byte() > 160) bitmap.rowPadding = input.number();
}

// A bitmap over memory that is not its own: its data is taken away again before it is destroyed.
class BorrowedBitmap {
 public:
  // From `skipped` bytes of the memory on.
  BorrowedBitmap(const GuardedMemory& memory, std::size_t skipped, Input& input) {
    describe(bitmap_, input);
    bitmap_.data = memory.pixels() + skipped;
    bitmap_.allocSize = static_cast<std::uint32_t>(memory.size() - skipped);
    if (input.byte() > 250) bitmap_.data = nullptr;
  }
  ~BorrowedBitmap() {
    bitmap_.data = nullptr;
    bitmap_.memoryEntry = 0;
  }
  BorrowedBitmap(const BorrowedBitmap&) = delete;
  BorrowedBitmap& operator=(const BorrowedBitmap&) = delete;
  VortoBitmap& operator*() { return bitmap_; }

 private:
  VortoBitmap bitmap_;
};

std::uint64_t rowBytes(const VortoBitmap& bitmap) {
  return std::uint64_t{bitmap.width} * bitmap.channels * (bitmap.bitsPerChannel / 8) + bitmap.rowPadding;
}

// Mismatched rows are a programming error that ends the process, by design.
bool flipAborts(const VortoBitmap& destination, const VortoBitmap& source) {
  if (destination.channels == source.channels) return rowBytes(destination) != rowBytes(source);
  return !(destination.formatCode == VortoPixelFormat::ARGB8 && source.formatCode == VortoPixelFormat::YUV8);
}

void runInPlace(std::uint32_t operation, VortoBitmap& bitmap, Input& input) {
  const VortoColor background(static_cast<float>(input.byte()) / 255, 0.5f, 0.25f, 1.0f);
  switch (operation) {
    case 0:
      return bitmap.invertAlpha();
    case 1:
      return bitmap.setConstantAlpha(input.byte() / 200.0);
    case 2:
      return bitmap.duplicateAlphaToRGB();
    case 3:
      return bitmap.unpremultiply(background);
    case 4:
      return bitmap.preMult();
    case 5:
      return bitmap.unPreMult();
    case 6:
      return bitmap.convertToARGB();
    case 7:
      return bitmap.convertToRGBA();
    case 8:
      return bitmap.flip();
    default:
      return bitmap.doOutputConversion(input.byte() & 1, input.byte() & 1, input.byte() & 1, background);
  }
}

void runCopy(std::uint32_t operation, VortoBitmap& to, const VortoBitmap& from, Input& input) {
  const VortoColor background(0.5f, static_cast<float>(input.byte()) / 255, 0.25f, 1.0f);
  const int x = static_cast<int>(input.number());
  const int y = static_cast<int>(input.number());
  switch (operation) {
    case 0:
      return to.copy(from);
    case 1:
      if (!flipAborts(to, from)) to.copyWithFlip(from);
      return;
    case 2:
      if (rowBytes(to) == rowBytes(from)) to.copyWithFlipAndSwizzleARGBtoRGBA(from);
      return;
    case 3:
      return to.copyWithSwizzleARGBToRGBA(from);
    case 4:
      return to.copyWithSwizzleRGBToARGB(from);
    case 5:
      return to.copyWithCropping(from, x, y, input.byte() & 1);
    case 6:
      return to.copyWithCropping(from, -x, -y, input.byte() & 1);
    case 7:
      return to.copyWithUnPreMult(from, background);
    case 8:
      return VortoBitmap::convertYUVtoRGBA(&to, &from);
    case 9:
      return VortoBitmap::convertRGBAtoYUV(&to, &from);
    case 10:
      return to.copyWithScaling(from);
    default:
      return to.copyWithScalingAndDepthConversion(from);
  }
}

void runOnBorrowed(Input& input) {
  const GuardedMemory first(memorySize(input), input);
  const bool isShared = input.byte() > 200;
  const GuardedMemory second(isShared ? 0 : memorySize(input), input);
  const std::size_t skipped = isShared && first.size() > 0 ? input.number() % first.size() : 0;
  BorrowedBitmap to(first, 0, input);
  BorrowedBitmap from(isShared ? first : second, skipped, input);
  for (int i = 0; i < 4; ++i) {
    const std::uint32_t operation = input.byte() % 24;
    if (operation < 10) {
      runInPlace(operation, *to, input);
    } else if (operation < 22) {
      runCopy(operation - 10, *to, *from, input);
    } else {
      runCopy(input.byte() % 12, *to, *to, input);  // the same bitmap on both sides
    }
  }
}

// The descriptor of a bitmap that does not take long to fill, unless its size wraps.
void describeModestly(VortoBitmap& bitmap, Input& input) {
  describe(bitmap, input);
  const std::uint32_t raw =
      (bitmap.width * bitmap.bitsPerChannel / 8 * bitmap.channels + bitmap.rowPadding) * bitmap.height;
  if (raw <= MaximumBytes) return;
  bitmap.width %= 200;
  bitmap.height %= 200;
  bitmap.channels %= 5;
  bitmap.bitsPerChannel %= 33;
  bitmap.rowPadding %= 100;
}

std::vector<std::uint8_t> pixelsFor(const VortoBitmap& bitmap) {
  const std::uint32_t row = bitmap.width * bitmap.channels * (bitmap.bitsPerChannel / 8) + bitmap.rowPadding;
  const std::uint64_t size = bitmap.rowPadding != 0 ? std::uint64_t{row} * bitmap.height : bitmap.getSize();
  return std::vector<std::uint8_t>(std::min<std::uint64_t>(size, bitmap.accessibleBytes()), 0x33);
}

void runOwning(std::uint32_t operation, VortoBitmap& to, const VortoBitmap& from, Input& input) {
  switch (operation) {
    case 0:
      return to.clone(from);
    case 1:
      return to.copyWithOutputConversion(from, input.byte() & 1, input.byte() & 1, input.byte() & 1,
                                         VortoColor(0.5f, 0.5f, 0.25f, 1.0f));
    case 2:
      return to.setData(pixelsFor(to).data());
    case 3:
      return to.clear();
    case 4:
      to.mapIntoMemory();
      to.unmapFromMemory();
      return to.mapIntoMemory();
    case 5: {
      VortoBitmap copied(from);
      return runInPlace(input.byte() % 10, copied, input);
    }
    case 6:
      return to.deallocateMemory();
    default:
      describeModestly(to, input);
      return to.allocateMemory();
  }
}

void runOnOwned(Input& input) {
  VortoBitmap first, second;
  for (VortoBitmap* bitmap : {&first, &second}) {
    describeModestly(*bitmap, input);
    bitmap->allocateMemory();
  }
  for (int i = 0; i < 6; ++i) {
    VortoBitmap& to = input.byte() & 1 ? first : second;
    VortoBitmap& from = input.byte() < 220 ? (&to == &first ? second : first) : to;
    const std::uint32_t operation = input.byte() % 30;
    if (operation < 10) {
      runInPlace(operation, to, input);
    } else if (operation < 22) {
      runCopy(operation - 10, to, from, input);
    } else {
      runOwning(operation - 22, to, from, input);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  Input input(bytes, size);
  if (input.byte() < 128) {
    runOnBorrowed(input);
  } else {
    runOnOwned(input);
  }
  return 0;
}
