// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/PictureTypes.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace host {

// How a frame lies in memory that processes share: packed rows from the top.
struct FrameKind {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  SampleType sample = SampleType::UInt8;
  Channels channels = Channels::RGBA;
  AlphaKind alpha = AlphaKind::None;

  std::size_t rowBytes() const { return width * channelCount(channels) * bytesPerSample(sample); }
  std::size_t bytes() const { return rowBytes() * height; }
  bool operator==(const FrameKind&) const = default;
};

// Places for frames, or other bytes, in memory that this process and its children share; who uses which slot when,
// their messages say. Slots grow and stay as large as the largest that was in them.
class FrameSlots {
 public:
  // New ones, for children to inherit. Throws Failure when memory cannot be had.
  explicit FrameSlots(std::size_t count);
  // In a child: `count` descriptors from that number on.
  FrameSlots(int first, std::size_t count);
  FrameSlots(FrameSlots&&) noexcept = default;
  FrameSlots& operator=(FrameSlots&&) = delete;
  ~FrameSlots();  // closes the descriptors

  std::size_t count() const { return slots_.size(); }
  std::vector<int> descriptors() const;

  // Room for a frame, whose pixels the caller writes. Throws Failure when there is no memory.
  std::byte* fill(std::size_t slot, const FrameKind& kind);
  // What another process wrote. Throws Failure when it is not all there. Both stay until the slot is filled again;
  // pixels() are as many as the last kind() said.
  FrameKind kind(std::size_t slot);
  const std::byte* pixels(std::size_t slot);

  // The same for bytes that are no frame.
  void put(std::size_t slot, std::span<const std::uint8_t> bytes);
  std::span<const std::uint8_t> bytes(std::size_t slot);

 private:
  FrameSlots() = default;
  struct Slot {
    int descriptor = -1;
    std::byte* memory = nullptr;
    std::size_t size = 0;  // of what is mapped
  };
  std::byte* mapped(Slot& slot, std::size_t size);
  std::byte* grown(std::size_t slot, std::size_t size);
  std::byte* whole(std::size_t slot, std::size_t* size);

  std::vector<Slot> slots_;
};

}  // namespace host
