// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/ReadOrientation.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace host {
namespace {

// Where a step to the right and one down in what is stored lead when it is shown.
struct Turn {
  int rightX, rightY, downX, downY;
  bool operator==(const Turn&) const = default;
};
constexpr Turn kTurns[] = {{1, 0, 0, 1}, {-1, 0, 0, 1}, {-1, 0, 0, -1}, {1, 0, 0, -1},
                           {0, 1, 1, 0}, {0, 1, -1, 0}, {0, -1, -1, 0}, {0, -1, 1, 0}};

// Of a number with 16 bits behind the point; 2 for what is no whole turn.
int direction(std::int32_t part) {
  constexpr std::int32_t kOne = 1 << 16;
  constexpr std::int32_t kNearly = kOne / 100;
  if (part > -kNearly && part < kNearly) return 0;
  if (part > kOne - kNearly && part < kOne + kNearly) return 1;
  return part > -kOne - kNearly && part < -kOne + kNearly ? -1 : 2;
}

}  // namespace

int orientationOf(const AVStream& stream) {
  std::size_t size = 0;
  const std::uint8_t* data = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
  std::int32_t matrix[9];
  if (!data || size < sizeof matrix) return 1;
  std::memcpy(matrix, data, sizeof matrix);
  const Turn turn{direction(matrix[0]), direction(matrix[1]), direction(matrix[3]), direction(matrix[4])};
  for (int i = 0; i < 8; ++i) {
    if (kTurns[i] == turn) return i + 1;
  }
  return 1;
}

void putUpright(const std::byte* stored, std::size_t width, std::size_t height, std::size_t pixelBytes, int orientation,
                std::byte* upright) {
  const Turn turn = kTurns[orientation - 1];
  const auto rowPixels = static_cast<std::ptrdiff_t>(rowsBecomeColumns(orientation) ? height : width);
  const auto bytes = static_cast<std::ptrdiff_t>(pixelBytes);
  const std::ptrdiff_t right = (turn.rightX + turn.rightY * rowPixels) * bytes;
  const std::ptrdiff_t down = (turn.downX + turn.downY * rowPixels) * bytes;
  // Steps that lead back start at the far end.
  std::byte* start = upright;
  if (right < 0) start -= right * static_cast<std::ptrdiff_t>(width - 1);
  if (down < 0) start -= down * static_cast<std::ptrdiff_t>(height - 1);
  for (std::size_t y = 0; y < height; ++y, start += down) {
    std::byte* to = start;
    for (std::size_t x = 0; x < width; ++x, to += right, stored += pixelBytes) std::memcpy(to, stored, pixelBytes);
  }
}

}  // namespace host
