// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Processes/FrameSlots.h"

#include "Host/Messages/Failure.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace host {
namespace {

// What stands at the start of a slot. Pixels begin on a cache line.
struct Header {
  FrameKind kind;
  std::uint64_t bytes;  // behind the header
};
constexpr std::size_t kHeaderBytes = 64;
static_assert(sizeof(Header) <= kHeaderBytes);

[[noreturn]] void refuse(const char* what) {
  throw Failure(ExitCode::Unexpected, std::string("memory for frames could not be ") + what + ": " + strerror(errno));
}

Header headerOf(const std::byte* memory) {
  Header header;
  std::memcpy(&header, memory, sizeof header);
  return header;
}

}  // namespace

// Through the constructor without slots: a Failure here then closes those that there are.
FrameSlots::FrameSlots(std::size_t count) : FrameSlots() {
  for (std::size_t i = 0; i < count; ++i) {
    const int descriptor = ::memfd_create("vorto-frame", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    if (descriptor < 0) refuse("made");
    slots_.push_back({descriptor, nullptr, 0});
    // What is mapped in one process is not taken away by another.
    if (::fcntl(descriptor, F_ADD_SEALS, F_SEAL_SHRINK) != 0) refuse("made");
  }
}

FrameSlots::FrameSlots(int first, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const int descriptor = first + static_cast<int>(i);
    ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    slots_.push_back({descriptor, nullptr, 0});
  }
}

FrameSlots::~FrameSlots() {
  for (const Slot& slot : slots_) {
    if (slot.memory) ::munmap(slot.memory, slot.size);
    ::close(slot.descriptor);
  }
}

std::vector<int> FrameSlots::descriptors() const {
  std::vector<int> result;
  result.reserve(slots_.size());
  for (const Slot& slot : slots_) result.push_back(slot.descriptor);
  return result;
}

std::byte* FrameSlots::mapped(Slot& slot, std::size_t size) {
  if (size <= slot.size) return slot.memory;
  if (slot.memory) ::munmap(slot.memory, slot.size);
  slot.memory = nullptr;
  slot.size = 0;
  void* memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, slot.descriptor, 0);
  if (memory == MAP_FAILED) refuse("mapped");
  slot.memory = static_cast<std::byte*>(memory);
  slot.size = size;
  return slot.memory;
}

std::byte* FrameSlots::grown(std::size_t index, std::size_t size) {
  Slot& slot = slots_.at(index);
  struct stat state {};
  if (::fstat(slot.descriptor, &state) != 0) refuse("looked at");
  // Allocated now, so that a machine without memory fails here and not while the pixels are written.
  if (static_cast<std::size_t>(state.st_size) < size) {
    do {
      errno = ::posix_fallocate(slot.descriptor, 0, static_cast<off_t>(size));
    } while (errno == EINTR);
    if (errno == EFBIG) {
      throw Failure(ExitCode::Unexpected, "memory for frames could not be had: " + std::to_string(size) +
                                              " bytes are more than the limit for the size of files (ulimit -f)");
    }
    if (errno != 0) refuse("had");
  }
  return mapped(slot, size);
}

std::byte* FrameSlots::whole(std::size_t index, std::size_t* size) {
  Slot& slot = slots_.at(index);
  struct stat state {};
  if (::fstat(slot.descriptor, &state) != 0) refuse("looked at");
  *size = static_cast<std::size_t>(state.st_size);
  if (*size < kHeaderBytes) throw Failure(ExitCode::Unexpected, "a helper process gave no frame");
  std::byte* memory = mapped(slot, *size);
  if (headerOf(memory).bytes > *size - kHeaderBytes) {
    throw Failure(ExitCode::Unexpected, "a helper process gave a frame that is not whole");
  }
  return memory;
}

std::byte* FrameSlots::fill(std::size_t slot, const FrameKind& kind) {
  std::byte* memory = grown(slot, kHeaderBytes + kind.bytes());
  const Header header{kind, kind.bytes()};
  std::memcpy(memory, &header, sizeof header);
  return memory + kHeaderBytes;
}

FrameKind FrameSlots::kind(std::size_t slot) {
  std::size_t size = 0;
  const Header header = headerOf(whole(slot, &size));
  const FrameKind& kind = header.kind;
  const bool isKnown = kind.sample <= SampleType::Float && kind.channels <= Channels::RGBA &&
                       kind.alpha <= AlphaKind::Premultiplied && kind.width > 0 && kind.height > 0;
  const std::size_t room = size - kHeaderBytes;
  if (!isKnown || kind.rowBytes() > room / kind.height || kind.bytes() != header.bytes) {
    throw Failure(ExitCode::Unexpected, "a helper process gave a frame that is not whole");
  }
  return kind;
}

const std::byte* FrameSlots::pixels(std::size_t slot) {
  std::size_t size = 0;
  return whole(slot, &size) + kHeaderBytes;
}

void FrameSlots::put(std::size_t slot, std::span<const std::uint8_t> bytes) {
  std::byte* memory = grown(slot, kHeaderBytes + bytes.size());
  const Header header{{}, bytes.size()};
  std::memcpy(memory, &header, sizeof header);
  std::memcpy(memory + kHeaderBytes, bytes.data(), bytes.size());
}

std::span<const std::uint8_t> FrameSlots::bytes(std::size_t slot) {
  std::size_t size = 0;
  const std::byte* memory = whole(slot, &size);
  return {reinterpret_cast<const std::uint8_t*>(memory + kHeaderBytes), headerOf(memory).bytes};
}

}  // namespace host
