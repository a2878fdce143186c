// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/GradientTable.h"

#include "Ports/VRTObjects.h"

namespace vorto::effects {

std::vector<GradientEntry<float>> floatGradientTable(const VRTGradient& gradient) {
  static_assert(sizeof(GradientEntry<float>) == 4 * sizeof(float));
  std::vector<GradientEntry<float>> table(kGradientSteps + 1);
  gradient.getGradientFloat(&table.front().alpha, kGradientSteps);
  table.back() = table[kGradientSteps - 1];
  return table;
}

std::vector<GradientEntry<std::uint8_t>> byteGradientTable(const VRTGradient& gradient) {
  static_assert(sizeof(GradientEntry<std::uint8_t>) == 4);
  std::vector<GradientEntry<std::uint8_t>> table(256);
  gradient.getGradient8(&table.front().alpha, static_cast<std::uint32_t>(table.size()));
  return table;
}

template <class Channel>
std::vector<GradientEntry<Channel>> roundedGradientTable(const VRTGradient& gradient) {
  const auto exact = floatGradientTable(gradient);
  std::vector<GradientEntry<Channel>> table(kGradientSteps);
  for (std::size_t i = 0; i < kGradientSteps; ++i) {
    table[i] = {quantized<Channel>(exact[i].alpha), quantized<Channel>(exact[i].red),
                quantized<Channel>(exact[i].green), quantized<Channel>(exact[i].blue)};
  }
  return table;
}

template std::vector<GradientEntry<std::uint8_t>> roundedGradientTable(const VRTGradient&);
template std::vector<GradientEntry<std::uint16_t>> roundedGradientTable(const VRTGradient&);

}  // namespace vorto::effects
