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

using V = VortoBitmap;

// What an operation takes from the input before it runs: in-place ones a color, copies a place too.
struct Arguments {
  Arguments(Input& in, std::uint32_t operation) : input(in) {
    if (operation < 22) background.c1 = static_cast<float>(in.byte()) / 255;
    if (operation < 10 || operation >= 22) return;
    x = static_cast<int>(in.number());
    y = static_cast<int>(in.number());
  }
  bool flag() const { return input.byte() & 1; }
  Input& input;
  VortoColor background{0.5f, 0.5f, 0.25f, 1.0f};
  int x = 0, y = 0;
};

// The first 10 change a bitmap in place, the next 12 copy into it, and the last 8 do something about its memory.
void run(std::uint32_t operation, V& to, const V& from, Input& input) {
  static const std::function<void(V&, const V&, const Arguments&)> operations[] = {
      [](V& t, auto&, auto&) { t.invertAlpha(); },
      [](V& t, auto&, auto& a) { t.setConstantAlpha(a.input.byte() / 200.0); },
      [](V& t, auto&, auto&) { t.duplicateAlphaToRGB(); },
      [](V& t, auto&, auto& a) { t.unpremultiply(a.background); },
      [](V& t, auto&, auto&) { t.preMult(); },
      [](V& t, auto&, auto&) { t.unPreMult(); },
      [](V& t, auto&, auto&) { t.convertToARGB(); },
      [](V& t, auto&, auto&) { t.convertToRGBA(); },
      [](V& t, auto&, auto&) { t.flip(); },
      [](V& t, auto&, auto& a) { t.doOutputConversion(a.flag(), a.flag(), a.flag(), a.background); },

      [](V& t, auto& f, auto&) { t.copy(f); },
      [](V& t, auto& f, auto&) { flipAborts(t, f) ? void() : t.copyWithFlip(f); },
      [](V& t, auto& f, auto&) { rowBytes(t) != rowBytes(f) ? void() : t.copyWithFlipAndSwizzleARGBtoRGBA(f); },
      [](V& t, auto& f, auto&) { t.copyWithSwizzleARGBToRGBA(f); },
      [](V& t, auto& f, auto&) { t.copyWithSwizzleRGBToARGB(f); },
      [](V& t, auto& f, auto& a) { t.copyWithCropping(f, a.x, a.y, a.flag()); },
      [](V& t, auto& f, auto& a) { t.copyWithCropping(f, -a.x, -a.y, a.flag()); },
      [](V& t, auto& f, auto& a) { t.copyWithUnPreMult(f, a.background); },
      [](V& t, auto& f, auto&) { V::convertYUVtoRGBA(&t, &f); },
      [](V& t, auto& f, auto&) { V::convertRGBAtoYUV(&t, &f); },
      [](V& t, auto& f, auto&) { t.copyWithScaling(f); },
      [](V& t, auto& f, auto&) { t.copyWithScalingAndDepthConversion(f); },

      [](V& t, auto& f, auto&) { t.clone(f); },
      [](V& t, auto& f, auto& a) { t.copyWithOutputConversion(f, a.flag(), a.flag(), a.flag(), a.background); },
      [](V& t, auto&, auto&) { t.setData(pixelsFor(t).data()); },
      [](V& t, auto&, auto&) { t.clear(); },
      [](V& t, auto&, auto&) { t.mapIntoMemory(), t.unmapFromMemory(), t.mapIntoMemory(); },
      [](V&, auto& f, auto& a) {
        V copied(f);
        run(a.input.byte() % 10, copied, copied, a.input);
      },
      [](V& t, auto&, auto&) { t.deallocateMemory(); },
      [](V& t, auto&, auto& a) { describeModestly(t, a.input), t.allocateMemory(); },
  };
  operations[operation](to, from, Arguments(input, operation));
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
    const bool isOne = operation >= 22;  // the same bitmap on both sides
    run(isOne ? 10 + input.byte() % 12 : operation, to, isOne ? to : from, input);
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
    run(input.byte() % 30, to, from, input);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  Input input(bytes, size);
  input.byte() < 128 ? runOnBorrowed(input) : runOnOwned(input);
  return 0;
}
