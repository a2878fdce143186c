// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/AlphaComplement.h"

#include <Imath/half.h>
#include <cstring>

namespace vorto::kernels {
namespace {

template <class T>
void complementAlpha(std::uint8_t* pixels, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    std::uint8_t* const position = pixels + (4 * i + 3) * sizeof(T);
    T alpha;
    std::memcpy(&alpha, position, sizeof alpha);
    alpha = T(1.0f - static_cast<float>(alpha));
    std::memcpy(position, &alpha, sizeof alpha);
  }
}

}  // namespace

void complementAlphaHalfScalar(std::uint8_t* pixels, std::size_t count) {
  complementAlpha<half>(pixels, count);
}
void complementAlphaFloatScalar(std::uint8_t* pixels, std::size_t count) {
  complementAlpha<float>(pixels, count);
}

}  // namespace vorto::kernels
