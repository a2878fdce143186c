// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>

namespace vorto::frei0r {

// The size of the frames that a plug-in gets.
struct FrameSize {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  bool operator==(const FrameSize&) const = default;
  std::size_t pixels() const { return std::size_t{width} * height; }
};

// Memory for frames, four bytes a pixel and row after row, that two processes see: up to three inputs, then the output.
// It grows and never shrinks, and neither process can make the other one fault by cutting it off.
class SharedFrames {
 public:
  static constexpr unsigned kOutput = 3;

  SharedFrames() = default;  // none: descriptor() is -1
  ~SharedFrames();
  SharedFrames(const SharedFrames&) = delete;
  SharedFrames& operator=(const SharedFrames&) = delete;

  bool create();               // false when the system gives none
  void adopt(int descriptor);  // what another process made; owned from here on
  int descriptor() const { return descriptor_; }

  // Room for frames of this size; what was there is lost. False when there is no memory. The creator makes room, the
  // other process looks at what is there: false when it is too little.
  bool makeRoom(const FrameSize& size);
  bool lookAt(const FrameSize& size);

  // Of the size that was last made room for; aligned to pages.
  std::uint32_t* frame(unsigned index) const;

 private:
  bool map(std::size_t bytes);
  void unmap();

  int descriptor_ = -1;
  std::byte* memory_ = nullptr;
  std::size_t mapped_ = 0;
  std::size_t frameBytes_ = 0;
};

}  // namespace vorto::frei0r
