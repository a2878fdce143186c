// SPDX-License-Identifier: BSD-3-Clause
#pragma once

// A module's files are read or refused; what is read depends on the file alone. Every file is read twice, with fresh
// memory filled differently: pixels that nobody wrote would differ. To be included by one source of a target, which
// replaces the operators of memory.
#include "Host/ImageFiles/ImageFileModule.h"
#include "Tests/Fuzz/Support/Check.h"

#include <sanitizer/allocator_interface.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <vector>

namespace fuzz {

// Above this the sanitizer takes calloc()'s memory from the system and does not clear it after the hook.
constexpr std::size_t kLargestHooked = 1 << 16;
constexpr std::size_t kLargestFilled = 1 << 20;
constexpr std::uint64_t kMostPixels = 1 << 18;

inline int pattern = 0;

inline void fillAllocation(const volatile void* memory, std::size_t size) {
  if (pattern != 0 && size <= kLargestHooked) std::memset(const_cast<void*>(memory), pattern, size);
}

struct Result {
  bool isRead = false;
  host::PictureInfo info;
  std::vector<std::uint8_t> pixels;
};

inline Result readWith(int fill, host::ImageFileModule& module, std::span<const std::uint8_t> file) {
  Result result;
  std::string reason;
  bool isOtherKind = false;
  pattern = fill;
  host::ReadRequest request;
  request.file = file;
  const auto reader = module.open(request, &isOtherKind, &reason);
  check(reader || isOtherKind || !reason.empty(), "what is not opened has a reason");
  if (reader && std::uint64_t{reader->info().width} * reader->info().height <= kMostPixels) {
    result.info = reader->info();
    const std::size_t rowBytes = std::size_t{4} * result.info.width * host::bytesPerSample(result.info.sample);
    result.pixels.assign(rowBytes * result.info.height, static_cast<std::uint8_t>(fill));
    result.isRead = reader->readPixels(reinterpret_cast<std::byte*>(result.pixels.data()), rowBytes, &reason);
    check(result.isRead || !reason.empty(), "what is not read has a reason");
  }
  pattern = 0;
  return result;
}

inline int readTwice(host::ImageFileModule& module, const std::uint8_t* data, std::size_t size) {
  const std::span<const std::uint8_t> file(data, size);
  const Result first = readWith(0x11, module, file);
  const Result second = readWith(0xEE, module, file);
  check(first.isRead == second.isRead, "reading depends on the file alone");
  if (!first.isRead) return 0;
  check(first.info.width == second.info.width && first.info.height == second.info.height, "so does the size");
  check(first.info.metadata == second.info.metadata, "so does what it says of itself");
  check(first.pixels == second.pixels, "so do the pixels");
  return 0;
}

}  // namespace fuzz

// What the libraries in C++ take, of every size.
void* operator new(std::size_t size) {
  void* memory = std::malloc(size);
  if (!memory) throw std::bad_alloc();
  if (fuzz::pattern != 0 && size > fuzz::kLargestHooked) {
    std::memset(memory, fuzz::pattern, std::min(size, fuzz::kLargestFilled));
  }
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
  __sanitizer_install_malloc_and_free_hooks(fuzz::fillAllocation, [](const volatile void*) {});
  return 0;
}

extern "C" host::ImageFileModule* VortoImageFileModule();

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return fuzz::readTwice(*VortoImageFileModule(), data, size);
}
