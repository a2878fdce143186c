// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Blend.h"
#include "Tests/Effects/kernels/Targets.h"

#include <hwy/aligned_allocator.h>

#include <typeinfo>

// Every blend mode in every instruction set of the machine against its definition.

namespace vorto::effects {
namespace {

template <class... Modes, class Function>
void forEachModeOf(ModeList<Modes...>, Function function) {
  (function(Modes()), ...);
}

template <class Function>
void forEachMode(Function function) {
  forEachModeList([&](auto list) {
    forEachModeOf(list, [&](auto mode) {
      SCOPED_TRACE(typeid(mode).name());
      function(mode);
    });
  });
}

// What is no number may be any of those.
template <class Channel>
void unifyNaN(Channel* values, std::size_t count) {
  if constexpr (std::is_same_v<Channel, float>) {
    std::replace_if(
        values, values + count, [](float v) { return std::isnan(v); }, std::nanf(""));
  }
}

template <class Channel>
class BlendRows : public Rows<Channel> {};
using Channels = testing::Types<std::uint8_t, std::uint16_t, float>;
TYPED_TEST_SUITE(BlendRows, Channels);

TYPED_TEST(BlendRows, AreAsDefined) {
  withLayoutsOf<TypeParam>([&](auto layout) {
    using Layout = decltype(layout);
    auto a = this->row();
    auto b = this->row();
    for (std::size_t i = Layout::kAlpha; i < a.size() / 2; i += 4) {
      b[i] = kOne<TypeParam>;
      if (i > a.size() / 4) a[i] = kOne<TypeParam>;
    }
    forEachMode([&](auto mode) {
      using Mode = decltype(mode);
      this->expectSame(
          [&](auto* out, std::size_t count) {
            blendRowScalar<Mode, Layout>(a.data(), b.data(), out, count);
            unifyNaN(out, 4 * count);
          },
          [&](auto* out, std::size_t count) {
            blendRow<Mode, Layout>(a.data(), b.data(), out, count);
            unifyNaN(out, 4 * count);
          });
    });
  });
}

// Results that are larger than caches are stored in another way.
TYPED_TEST(BlendRows, OfLargeImagesAreAsDefined) {
  const std::size_t count = (std::size_t{25} << 20) / 4 / sizeof(TypeParam) + 3;
  const auto part = this->row();
  std::vector<TypeParam> a(4 * count);
  for (std::size_t i = 0; i < a.size(); ++i) a[i] = part[i % (part.size() - 12)];
  std::vector<TypeParam> expected(a.size());
  const auto out = hwy::AllocateAligned<TypeParam>(a.size());
  withLayoutsOf<TypeParam>([&](auto layout) {
    using Layout = decltype(layout);
    blendRowScalar<OverMode, Layout>(a.data(), a.data(), expected.data(), count);
    onEveryTarget([&] {
      blendRow<OverMode, Layout>(a.data(), a.data(), out.get(), count);
      EXPECT_EQ(std::memcmp(out.get(), expected.data(), a.size() * sizeof(TypeParam)), 0);
    });
  });
}

// Of bytes there are few enough to try them all: each color of both images, under many pairs of alphas.
TEST(Bytes, BlendAsDefinedForEveryValue) {
  std::vector<std::uint8_t> behind, front;
  for (std::uint32_t i = 0; i < 1U << 16; ++i) {
    const auto low = static_cast<std::uint8_t>(i);
    const auto high = static_cast<std::uint8_t>(i >> 8);
    behind.insert(behind.end(), {low, 0, 255, 0});
    front.insert(front.end(), {high, 255, 0, 0});
  }
  std::vector<std::uint8_t> expected(behind.size()), out(behind.size());
  for (const int alphas : {0, 1, 255, 256, 511, 0x8080, 0x7F81, 0x4003, 0xFE40, 0xC8FF, 0xFFC8, 65279, 65280, 65535}) {
    SCOPED_TRACE(alphas);
    for (std::size_t i = 3; i < behind.size(); i += 4) {
      behind[i] = static_cast<std::uint8_t>(alphas);
      front[i] = static_cast<std::uint8_t>(alphas >> 8);
    }
    const std::size_t count = behind.size() / 4;
    forEachMode([&](auto mode) {
      blendRowScalar<decltype(mode), RGBA8>(behind.data(), front.data(), expected.data(), count);
      blendRow<decltype(mode), RGBA8>(behind.data(), front.data(), out.data(), count);
      ASSERT_EQ(out, expected);
    });
  }
}

}  // namespace
}  // namespace vorto::effects
