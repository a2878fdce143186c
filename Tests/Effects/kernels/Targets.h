// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/Arithmetic.h"
#include "Effects/Support/PixelLayout.h"

#include <hwy/highway.h>

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

// Rows of any pixels, and every instruction set of the machine, for tests of kernels against their definitions.

namespace vorto::effects {

// Calls the function once in every instruction set of the machine.
template <class Function>
void onEveryTarget(Function function) {
  hwy::SetSupportedTargetsForTest(0);
  for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
    SCOPED_TRACE(hwy::TargetName(target));
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(target);
    function();
  }
  hwy::SetSupportedTargetsForTest(0);
  hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

inline constexpr std::size_t kPixels = 4099;  // whole vectors of any size, and a rest

template <class Channel>
class Rows : public testing::Test {
 public:
  using Row = std::vector<Channel>;

  Row row() {
    Row row(4 * kPixels);
    for (Channel& each : row) each = channel();
    return row;
  }

  // Often the ends and their neighbours; floats also outside 0 to 1.
  Channel channel() {
    const auto kind = random_() % 8;
    if constexpr (std::is_same_v<Channel, float>) {
      return kind == 0 ? 0.0F : kind == 1 ? 1.0F : std::uniform_real_distribution<float>(-0.5F, 2)(random_);
    } else {
      const auto near = static_cast<Channel>(random_() % 3);
      return kind == 0   ? near
             : kind == 1 ? static_cast<Channel>(kFull<Channel> - near)
                         : static_cast<Channel>(random_());
    }
  }

  std::vector<MixWeight<Channel>> weights() {
    std::vector<MixWeight<Channel>> weights(kPixels);
    for (auto& each : weights) {
      const double value = std::uniform_real_distribution<>(-0.2, 1.2)(random_);
      each = random_() % 8 == 0 ? mixWeight<Channel>(0.5) : mixWeight<Channel>(value);
    }
    return weights;
  }

  template <class Definition, class Kernel>
  void expectSame(Definition definition, Kernel kernel) {
    for (const std::size_t count : {kPixels, std::size_t{3}, std::size_t{0}}) {
      Row expected(4 * kPixels, Channel{7});
      definition(expected.data(), count);
      onEveryTarget([&] {
        Row out(4 * kPixels, Channel{7});
        kernel(out.data(), count);
        EXPECT_EQ(std::memcmp(out.data(), expected.data(), out.size() * sizeof(Channel)), 0);
      });
    }
  }

 private:
  std::mt19937 random_{1};
};
template <class Channel, class Function>
void withLayoutsOf(Function function) {
  for (const auto code :
       {VortoPixelFormat::RGBA8, VortoPixelFormat::ARGB8, VortoPixelFormat::RGBA16, VortoPixelFormat::RGBAFloat}) {
    withLayout(code, [&](auto layout) {
      if constexpr (std::is_same_v<typename decltype(layout)::Channel, Channel>) function(layout);
    });
  }
}

}  // namespace vorto::effects
