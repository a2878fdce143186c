// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/Arithmetic.h"
#include "Effects/kernels/FloatPixels.h"
#include "Effects/kernels/Noise.h"

namespace vorto::effects {
namespace {

template <class Channel>
Channel stored(float value) {
  return storedChannel<Channel>(value * fullOf<Channel>(), fullOf<Channel>());
}

}  // namespace

std::uint32_t scrambled(std::uint32_t n) {
  n = (n ^ (n >> 16)) * kScrambleFirst;
  n = (n ^ (n >> 15)) * kScrambleSecond;
  return n ^ (n >> 16);
}

void latticeRowScalar(std::uint32_t key, std::uint32_t row, float* out, std::size_t first, std::size_t count) {
  const std::uint32_t rowKey = scrambled(key + row);
  for (std::size_t i = first; i < count; ++i) {
    const std::uint32_t n = scrambled(rowKey ^ (static_cast<std::uint32_t>(i) * kColumnStep));
    out[i] = static_cast<float>(n >> 8) * 0x1p-24F;
  }
}

template <class Layout>
void opaqueRowScalar(const float* red, const float* green, const float* blue, typename Layout::Channel* out,
                     std::size_t count) {
  using Channel = typename Layout::Channel;
  for (std::size_t i = 0; i < count; ++i, out += Layout::kChannels) {
    out[Layout::kRed] = stored<Channel>(red[i]);
    out[Layout::kGreen] = stored<Channel>(green[i]);
    out[Layout::kBlue] = stored<Channel>(blue[i]);
    out[Layout::kAlpha] = kOne<Channel>;
  }
}

template void opaqueRowScalar<RGBA8>(const float*, const float*, const float*, std::uint8_t*, std::size_t);
template void opaqueRowScalar<RGBA16>(const float*, const float*, const float*, std::uint16_t*, std::size_t);
template void opaqueRowScalar<RGBAFloat>(const float*, const float*, const float*, float*, std::size_t);

}  // namespace vorto::effects
