// SPDX-License-Identifier: BSD-3-Clause
// A picture is read or refused; what is read depends on the file alone. Every file is read twice, with fresh memory
// filled differently: pixels that nobody wrote would differ.
#include "Host/ImageFiles/ImageFileModule.h"
#include "Tests/Fuzz/Support/Check.h"

#include <sanitizer/allocator_interface.h>

#include <algorithm>
#include <cstring>
#include <new>

extern "C" host::ImageFileModule* VortoImageFileModule();

namespace {

// Above this the sanitizer takes calloc()'s memory from the system and does not clear it after the hook.
constexpr std::size_t kLargestHooked = 1 << 16;
constexpr std::size_t kLargestFilled = 1 << 20;  // more than the pictures read here take

int pattern = 0;

void fillAllocation(const volatile void* memory, std::size_t size) {
  if (pattern != 0 && size <= kLargestHooked) std::memset(const_cast<void*>(memory), pattern, size);
}

struct Result {
  bool isRead = false;
  host::ImagePixels image;
};

Result readWith(int fill, std::span<const std::uint8_t> file) {
  Result result;
  std::string reason;
  pattern = fill;
  result.isRead = VortoImageFileModule()->read(file, kLargestFilled / 4, &result.image, &reason);
  pattern = 0;
  check(result.isRead || !reason.empty(), "what is not read has a reason");
  return result;
}

}  // namespace

// What the libraries in C++ take, of every size.
void* operator new(std::size_t size) {
  void* memory = std::malloc(size);
  if (!memory) throw std::bad_alloc();
  if (pattern != 0 && size > kLargestHooked) std::memset(memory, pattern, std::min(size, kLargestFilled));
  return memory;
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

// The operators above are malloc() and free() to the sanitizer; not so the other ways in which memory is taken.
extern "C" const char* __asan_default_options() {
  return "alloc_dealloc_mismatch=0";
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  __sanitizer_install_malloc_and_free_hooks(fillAllocation, [](const volatile void*) {});
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::uint8_t> file(data, size);
  const Result first = readWith(0x11, file);
  const Result second = readWith(0xEE, file);
  check(first.isRead == second.isRead, "reading depends on the file alone");
  if (!first.isRead) return 0;
  const host::ImagePixels& image = first.image;
  const std::size_t bytes = image.sampleCount() * host::bytesPerSample(image.sample);
  check(image.width == second.image.width && image.height == second.image.height, "so does the size");
  check(std::memcmp(image.bytes.get(), second.image.bytes.get(), bytes) == 0, "so do the pixels");
  return 0;
}
