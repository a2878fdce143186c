// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/In/SharedFrames.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vorto::frei0r {
namespace {

constexpr std::size_t kPage = 4096;
constexpr std::size_t kFrames = SharedFrames::kOutput + 1;

// Of one frame, with a page between frames that keeps small overruns of a plug-in out of the next one.
std::size_t frameBytesOf(const FrameSize& size) {
  return (size.pixels() * 4 + kPage - 1) / kPage * kPage + kPage;
}

}  // namespace

SharedFrames::~SharedFrames() {
  unmap();
  if (descriptor_ >= 0) ::close(descriptor_);
}

bool SharedFrames::create() {
  descriptor_ = ::memfd_create("vorto-frei0r", MFD_CLOEXEC | MFD_ALLOW_SEALING);
  return descriptor_ >= 0 && ::fcntl(descriptor_, F_ADD_SEALS, F_SEAL_SHRINK) == 0;
}

void SharedFrames::adopt(int descriptor) {
  descriptor_ = descriptor;
}

bool SharedFrames::makeRoom(const FrameSize& size) {
  const std::size_t bytes = frameBytesOf(size) * kFrames;
  if (bytes > mapped_ && (::ftruncate(descriptor_, static_cast<off_t>(bytes)) != 0 || !map(bytes))) return false;
  frameBytes_ = frameBytesOf(size);
  return true;
}

bool SharedFrames::lookAt(const FrameSize& size) {
  const std::size_t bytes = frameBytesOf(size) * kFrames;
  struct stat status;
  if (::fstat(descriptor_, &status) != 0 || static_cast<std::size_t>(status.st_size) < bytes) return false;
  if (bytes > mapped_ && !map(bytes)) return false;
  frameBytes_ = frameBytesOf(size);
  return true;
}

std::uint32_t* SharedFrames::frame(unsigned index) const {
  return reinterpret_cast<std::uint32_t*>(memory_ + index * frameBytes_);
}

bool SharedFrames::map(std::size_t bytes) {
  unmap();
  void* const memory = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor_, 0);
  if (memory == MAP_FAILED) return false;
  memory_ = static_cast<std::byte*>(memory);
  mapped_ = bytes;
  return true;
}

void SharedFrames::unmap() {
  if (memory_) ::munmap(memory_, mapped_);
  memory_ = nullptr;
  mapped_ = 0;
}

}  // namespace vorto::frei0r
