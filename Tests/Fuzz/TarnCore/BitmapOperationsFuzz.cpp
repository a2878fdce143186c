// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCColor.h"
#include "TarnCore/TCPixelFormat.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <functional>
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

constexpr std::size_t kMaximumBytes = std::size_t{1} << 20;
constexpr std::size_t kStreamedBytes = std::size_t{17} << 20;  // written past the caches

// Pixels between a watched margin and a page that faults.
class GuardedMemory {
 public:
  explicit GuardedMemory(std::size_t bytes, Input& input)
      : size(bytes), mapped_((kPage + bytes + kPage - 1) / kPage * kPage + kPage) {
    start_ =
        static_cast<std::uint8_t*>(mmap(nullptr, mapped_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    if (start_ == MAP_FAILED || mprotect(start_ + mapped_ - kPage, kPage, PROT_NONE) != 0) std::abort();
    pixels = start_ + mapped_ - kPage - size;
    std::fill(start_, pixels, kGuard);
    for (std::size_t i = 0; i < size && i < 64; ++i) pixels[i] = static_cast<std::uint8_t>(input.byte());
  }
  ~GuardedMemory() {
    if (std::count(start_, pixels, kGuard) != pixels - start_) std::abort();
    munmap(start_, mapped_);
  }
  GuardedMemory(const GuardedMemory&) = delete;
  GuardedMemory& operator=(const GuardedMemory&) = delete;
  static std::size_t sizeFrom(Input& input) {
    return input.byte() == 255 ? kStreamedBytes + input.byte() : input.number() % kMaximumBytes;
  }

  const std::size_t size;
  std::uint8_t* pixels = nullptr;

 private:
  static constexpr std::size_t kPage = 4096;
  static constexpr std::uint8_t kGuard = 0x5A;
  std::size_t mapped_;
  std::uint8_t* start_;
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

// A bitmap over memory that is not its own, from `skipped` bytes on.
class BorrowedBitmap : public VortoBitmap {
 public:
  BorrowedBitmap(const GuardedMemory& memory, std::size_t skipped, Input& input) {
    describe(*this, input);
    data = memory.pixels + skipped;
    allocSize = static_cast<std::uint32_t>(memory.size - skipped);
    if (input.byte() > 250) data = nullptr;
  }
  ~BorrowedBitmap() override {
    data = nullptr;
    memoryEntry = 0;
  }
};

std::uint64_t rowBytes(const VortoBitmap& bitmap) {
  return std::uint64_t{bitmap.width} * bitmap.channels * (bitmap.bitsPerChannel / 8) + bitmap.rowPadding;
}

// Mismatched rows are a programming error that ends the process, by design.
bool flipAborts(const VortoBitmap& destination, const VortoBitmap& source) {
  if (destination.channels == source.channels) return rowBytes(destination) != rowBytes(source);
  return !(destination.formatCode == VortoPixelFormat::ARGB8 && source.formatCode == VortoPixelFormat::YUV8);
}

using V = VortoBitmap;

void runInPlace(std::uint32_t operation, V& bitmap, Input& in) {
  static const std::function<void(V&, Input&, const VortoColor&)> operations[] = {
      [](V& b, Input&, auto&) { b.invertAlpha(); },
      [](V& b, Input& i, auto&) { b.setConstantAlpha(i.byte() / 200.0); },
      [](V& b, Input&, auto&) { b.duplicateAlphaToRGB(); },
      [](V& b, Input&, auto& background) { b.unpremultiply(background); },
      [](V& b, Input&, auto&) { b.preMult(); },
      [](V& b, Input&, auto&) { b.unPreMult(); },
      [](V& b, Input&, auto&) { b.convertToARGB(); },
      [](V& b, Input&, auto&) { b.convertToRGBA(); },
      [](V& b, Input&, auto&) { b.flip(); },
      [](V& b, Input& i, auto& color) { b.doOutputConversion(i.byte() & 1, i.byte() & 1, i.byte() & 1, color); },
  };
  operations[operation](bitmap, in, VortoColor(static_cast<float>(in.byte()) / 255, 0.5f, 0.25f, 1.0f));
}

struct Arguments {
  explicit Arguments(Input& in)
      : input(in),
        background(0.5f, static_cast<float>(in.byte()) / 255, 0.25f, 1.0f),
        x(static_cast<int>(in.number())),
        y(static_cast<int>(in.number())) {}
  Input& input;
  VortoColor background;
  int x, y;
};

void runCopy(std::uint32_t operation, V& to, const V& from, Input& input) {
  static const std::function<void(V&, const V&, Arguments&)> operations[] = {
      [](V& t, const V& f, auto&) { t.copy(f); },
      [](V& t, const V& f, auto&) { flipAborts(t, f) ? void() : t.copyWithFlip(f); },
      [](V& t, const V& f, auto&) { rowBytes(t) != rowBytes(f) ? void() : t.copyWithFlipAndSwizzleARGBtoRGBA(f); },
      [](V& t, const V& f, auto&) { t.copyWithSwizzleARGBToRGBA(f); },
      [](V& t, const V& f, auto&) { t.copyWithSwizzleRGBToARGB(f); },
      [](V& t, const V& f, auto& a) { t.copyWithCropping(f, a.x, a.y, a.input.byte() & 1); },
      [](V& t, const V& f, auto& a) { t.copyWithCropping(f, -a.x, -a.y, a.input.byte() & 1); },
      [](V& t, const V& f, auto& a) { t.copyWithUnPreMult(f, a.background); },
      [](V& t, const V& f, auto&) { V::convertYUVtoRGBA(&t, &f); },
      [](V& t, const V& f, auto&) { V::convertRGBAtoYUV(&t, &f); },
      [](V& t, const V& f, auto&) { t.copyWithScaling(f); },
      [](V& t, const V& f, auto&) { t.copyWithScalingAndDepthConversion(f); },
  };
  Arguments arguments(input);
  operations[operation](to, from, arguments);
}

void runOnBorrowed(Input& input) {
  const GuardedMemory first(GuardedMemory::sizeFrom(input), input);
  const bool isShared = input.byte() > 200;
  const GuardedMemory second(isShared ? 0 : GuardedMemory::sizeFrom(input), input);
  const std::size_t skipped = isShared && first.size > 0 ? input.number() % first.size : 0;
  BorrowedBitmap to(first, 0, input);
  BorrowedBitmap from(isShared ? first : second, skipped, input);
  for (int i = 0; i < 4; ++i) {
    const std::uint32_t operation = input.byte() % 24;
    if (operation < 10) {
      runInPlace(operation, to, input);
    } else if (operation < 22) {
      runCopy(operation - 10, to, from, input);
    } else {
      runCopy(input.byte() % 12, to, to, input);  // the same bitmap on both sides
    }
  }
}

// The descriptor of a bitmap that does not take long to fill, unless its size wraps.
void describeModestly(VortoBitmap& bitmap, Input& input) {
  describe(bitmap, input);
  const std::uint32_t raw =
      (bitmap.width * bitmap.bitsPerChannel / 8 * bitmap.channels + bitmap.rowPadding) * bitmap.height;
  if (raw <= kMaximumBytes) return;
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

void runOwning(std::uint32_t operation, V& to, const V& from, Input& input) {
  static const std::function<void(V&, const V&, Input&)> operations[] = {
      [](V& t, const V& f, Input&) { t.clone(f); },
      [](V& t, const V& f, Input& i) {
        t.copyWithOutputConversion(f, i.byte() & 1, i.byte() & 1, i.byte() & 1, VortoColor(0.5f, 0.5f, 0.25f, 1.0f));
      },
      [](V& t, const V&, Input&) { t.setData(pixelsFor(t).data()); },
      [](V& t, const V&, Input&) { t.clear(); },
      [](V& t, const V&, Input&) {
        t.mapIntoMemory();
        t.unmapFromMemory();
        t.mapIntoMemory();
      },
      [](V&, const V& f, Input& i) {
        V copied(f);
        runInPlace(i.byte() % 10, copied, i);
      },
      [](V& t, const V&, Input&) { t.deallocateMemory(); },
      [](V& t, const V&, Input& i) {
        describeModestly(t, i);
        t.allocateMemory();
      },
  };
  operations[operation](to, from, input);
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
  input.byte() < 128 ? runOnBorrowed(input) : runOnOwned(input);
  return 0;
}
