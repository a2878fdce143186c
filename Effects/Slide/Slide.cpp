// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/TransitionPatch.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace vorto::effects {
namespace {

enum Direction : std::uint32_t { kLeft, kRight, kUp, kDown };
enum Style : std::uint32_t { kPush, kCover, kReveal };

// A piece of an image along the movement, in pixels.
struct Piece {
  std::size_t from;  // in the image
  std::size_t to;    // in the result
  std::size_t length;
};

struct Pieces {
  Piece a, b;

  // After a movement of `moved` of `extent` pixels; forward is to the right and down.
  static Pieces of(std::size_t extent, std::size_t moved, bool isForward, Style style) {
    const std::size_t rest = extent - moved;
    const bool movesA = style != kCover;
    const bool movesB = style != kReveal;
    if (isForward) return {{movesA ? 0 : moved, moved, rest}, {movesB ? rest : 0, 0, moved}};
    return {{movesA ? moved : 0, 0, rest}, {movesB ? 0 : rest, rest, moved}};
  }
};

class SlidePatch : public TransitionPatch {
 public:
  static PropertyList description() {
    return describe("Slide", "Moves the second image in, the first one out, or both.");
  }

  SlidePatch() : TransitionPatch(description()) {
    direction_ = addInputPort<QCIndexPort>("inputDirection",
                                           menuAttributes("Direction", {"Left", "Right", "Up", "Down"}, kLeft));
    style_ = addInputPort<QCIndexPort>("inputStyle", menuAttributes("Style", {"Push", "Cover", "Reveal"}, kPush));
  }

 private:
  void mix(const VortoBitmap& a, const VortoBitmap& b, double time, VortoBitmap& out) override {
    const std::uint32_t direction = std::min<std::uint32_t>(direction_->indexValue(), kDown);
    const auto style = static_cast<Style>(std::min<std::uint32_t>(style_->indexValue(), kReveal));
    const bool isForward = direction == kRight || direction == kDown;
    const bool isAlongRows = direction == kLeft || direction == kRight;
    const std::size_t extent = isAlongRows ? out.width : out.height;
    const auto moved = static_cast<std::size_t>(std::floor(time * static_cast<double>(extent) + 0.5));
    const Pieces pieces = Pieces::of(extent, std::min(moved, extent), isForward, style);
    if (isAlongRows) {
      copyColumns(a, pieces.a, out);
      copyColumns(b, pieces.b, out);
    } else {
      copyRows(a, pieces.a, out);
      copyRows(b, pieces.b, out);
    }
  }

  static std::size_t pixelBytes(const VortoBitmap& bitmap) {
    return std::size_t{bitmap.bitsPerChannel} / 8 * bitmap.channels;
  }

  static void copyColumns(const VortoBitmap& from, const Piece& piece, VortoBitmap& out) {
    const std::size_t bytes = pixelBytes(out);
    for (std::size_t y = 0; y < out.height; ++y) {
      std::memcpy(rowOf<std::uint8_t>(out, y) + piece.to * bytes, rowOf<std::uint8_t>(from, y) + piece.from * bytes,
                  piece.length * bytes);
    }
  }

  static void copyRows(const VortoBitmap& from, const Piece& piece, VortoBitmap& out) {
    for (std::size_t y = 0; y < piece.length; ++y) {
      std::memcpy(rowOf<std::uint8_t>(out, piece.to + y), rowOf<std::uint8_t>(from, piece.from + y),
                  out.width * pixelBytes(out));
    }
  }

  std::shared_ptr<QCIndexPort> direction_;
  std::shared_ptr<QCIndexPort> style_;
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::SlidePatch>)
