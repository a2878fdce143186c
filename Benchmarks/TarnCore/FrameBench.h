// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCColor.h"
#include "TarnCore/TCPixelFormat.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// How whole-image operations are measured: one row a frame size, operation and layout. A row times the operation,
// memcpy of an RGBA8 frame of the same size and every other library that knows the same work, in turns, so that all of
// them meet the same machine; and it gives medians.

struct FrameSize {
  std::uint32_t width, height;
};

enum class Task {
  InvertAlpha,
  ConstantAlpha,  // 1
  DuplicateAlpha,
  Premultiply,
  Unpremultiply,
  Reorder,  // in place or copying, with `flipped` upside down
  Flip,     // in place
  Clone,
  Copy,  // of a whole bitmap or, with `cropped`, of a part; with `flipped` upside down
  ConvertYUV,
  Scale,
  ConvertDepth,  // and scale, where sizes differ
  Fingerprint,
  Lifecycle,
  Other
};

enum class Shape { Whole, Cropped, Scaled };

using Work = std::function<void(VortoBitmap& destination, VortoBitmap& source)>;

struct Row {
  Task task;
  std::string name;
  VortoPixelFormat::Code destination, source;  // in place: the layout twice, and the source is not used
  Work work;
  Shape shape = Shape::Whole;
  bool inPlace = false;
  bool flipped = false;
  bool mostlyOpaque = false;            // else alpha is random
  int frameReads = 1, frameWrites = 1;  // for what passes through memory: pixels of the destination's number
};

// The other libraries: what does a row's work, with the library's name; null where it has nothing alike or was not
// there when the benchmarks were built. Their results are allowed to be approximate.
struct Peer {
  std::string name;
  Work work;
};
Work libyuvWork(const Row& row);
Work openCVWork(const Row& row);
Work swscaleWork(const Row& row);
std::vector<Peer> plainPeers(const Row& row);  // OpenSSL, loops, and the system's allocator

// The rows, by subject.
std::vector<Row> inPlaceRows();
std::vector<Row> copyRows();
std::vector<Row> scaleRows();
std::vector<Row> depthRows();
std::vector<Row> wholeRows();  // output conversions, a bitmap's life and the fingerprint

const char* layoutName(VortoPixelFormat::Code code);
inline const VortoColor kBackground(0.2f, 0.5f, 0.8f, 1);
