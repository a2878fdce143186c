// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/Arithmetic.h"
#include "Effects/kernels/Blend.h"
#include "Effects/kernels/BlendPlanesScalar.h"
#include "Effects/kernels/FloatPixels.h"

namespace vorto::effects {
namespace {

float blended(OverMode, float background, float foreground, float, float foregroundAlpha) {
  return foreground + background * (1 - foregroundAlpha);
}

template <class Channel>
Channel blended(OverMode, Channel background, Channel foreground, Channel, Channel foregroundAlpha) {
  const auto uncovered = static_cast<Channel>(kFull<Channel> - foregroundAlpha);
  const std::uint32_t sum = std::uint32_t{foreground} + product(background, uncovered);
  return static_cast<Channel>(std::min(sum, kFull<Channel>));
}

float blended(PlusMode, float background, float foreground, float, float) {
  return foreground + background;
}

template <class Channel>
Channel blended(PlusMode, Channel background, Channel foreground, Channel, Channel) {
  return static_cast<Channel>(std::min(std::uint32_t{foreground} + background, kFull<Channel>));
}

// For alpha the formula is "over" as well, since F * B + F * (1 - B) + B * (1 - F) is F + B - F * B.
float blended(MultiplyMode, float background, float foreground, float backgroundAlpha, float foregroundAlpha) {
  return foreground * background + foreground * (1 - backgroundAlpha) + background * (1 - foregroundAlpha);
}

template <class Channel>
Channel blended(MultiplyMode, Channel background, Channel foreground, Channel backgroundAlpha,
                Channel foregroundAlpha) {
  using Wide = std::conditional_t<sizeof(Channel) == 1, std::uint32_t, std::uint64_t>;
  const Wide sum = Wide{foreground} * (Wide{background} + kFull<Channel> - backgroundAlpha) +
                   Wide{background} * (kFull<Channel> - foregroundAlpha);
  const Wide rounded = (sum + kFull<Channel> / 2) / kFull<Channel>;
  return static_cast<Channel>(std::min<Wide>(rounded, kFull<Channel>));
}

float blended(ScreenMode, float background, float foreground, float, float) {
  return foreground + background * (1 - foreground);
}

template <class Channel>
Channel blended(ScreenMode, Channel background, Channel foreground, Channel, Channel) {
  const std::uint64_t full = kFull<Channel>;
  const std::uint64_t sum = full * (std::uint64_t{foreground} + background) - std::uint64_t{foreground} * background;
  return static_cast<Channel>((sum + full / 2) / full);
}

// The polynomial modes' `both`, of floats or of whole numbers.
template <class Number>
Number both(DarkenMode, Number b, Number f, Number backgroundAlpha, Number foregroundAlpha) {
  return f * backgroundAlpha < b * foregroundAlpha ? f * backgroundAlpha : b * foregroundAlpha;
}

template <class Number>
Number both(LightenMode, Number b, Number f, Number backgroundAlpha, Number foregroundAlpha) {
  return b * foregroundAlpha < f * backgroundAlpha ? f * backgroundAlpha : b * foregroundAlpha;
}

template <class Number>
Number both(DifferenceMode, Number b, Number f, Number backgroundAlpha, Number foregroundAlpha) {
  return both(LightenMode(), b, f, backgroundAlpha, foregroundAlpha) -
         both(DarkenMode(), b, f, backgroundAlpha, foregroundAlpha);
}

template <class Number>
Number both(ExclusionMode, Number b, Number f, Number backgroundAlpha, Number foregroundAlpha) {
  return f * (backgroundAlpha - b) + b * (foregroundAlpha - f);
}

template <class Number>
Number both(HardLightMode, Number b, Number f, Number backgroundAlpha, Number foregroundAlpha) {
  return 2 * f > foregroundAlpha ? foregroundAlpha * backgroundAlpha - 2 * (foregroundAlpha - f) * (backgroundAlpha - b)
                                 : 2 * f * b;
}

template <class Number>
Number both(OverlayMode, Number b, Number f, Number backgroundAlpha, Number foregroundAlpha) {
  return 2 * b > backgroundAlpha ? foregroundAlpha * backgroundAlpha - 2 * (foregroundAlpha - f) * (backgroundAlpha - b)
                                 : 2 * f * b;
}

template <class Number>
Number sumOver(Number one, Number both, Number b, Number f, Number backgroundAlpha, Number foregroundAlpha) {
  return both + f * (one - backgroundAlpha) + b * (one - foregroundAlpha);
}

// Alpha, and the colors of the polynomial modes.
template <class Mode>
float exactly(Mode mode, bool isAlpha, float b, float f, float backgroundAlpha, float foregroundAlpha) {
  const float shared = isAlpha ? foregroundAlpha * backgroundAlpha : both(mode, b, f, backgroundAlpha, foregroundAlpha);
  return sumOver(1.0F, shared, b, f, backgroundAlpha, foregroundAlpha);
}

template <class Mode, class Channel>
Channel exactly(Mode mode, bool isAlpha, Channel behind, Channel front, Channel behindAlpha, Channel frontAlpha) {
  const std::int64_t full = kFull<Channel>;
  const std::int64_t backgroundAlpha = behindAlpha;
  const std::int64_t foregroundAlpha = frontAlpha;
  const std::int64_t b = std::min(behind, behindAlpha);
  const std::int64_t f = std::min(front, frontAlpha);
  const std::int64_t shared =
      isAlpha ? foregroundAlpha * backgroundAlpha : both(mode, b, f, backgroundAlpha, foregroundAlpha);
  return static_cast<Channel>((sumOver(full, shared, b, f, backgroundAlpha, foregroundAlpha) + full / 2) / full);
}

template <class Channel>
float realUpTo(Channel color, Channel alpha) {
  if constexpr (std::is_same_v<Channel, float>) return color;
  return static_cast<float>(std::min(color, alpha));
}

template <class Layout, class Channel = typename Layout::Channel>
planes::Color colorOf(const Channel* pixel) {
  const Channel alpha = pixel[Layout::kAlpha];
  return {realUpTo(pixel[Layout::kRed], alpha), realUpTo(pixel[Layout::kGreen], alpha),
          realUpTo(pixel[Layout::kBlue], alpha)};
}

// A color in the square of the depth's units, rounded and no more than alpha; floats as they are.
template <class Channel>
Channel stored(float sum, Channel alpha) {
  if constexpr (std::is_same_v<Channel, float>) {
    return sum;
  } else {
    const auto rounded = static_cast<std::int32_t>(sum * (1 / fullOf<Channel>()) + 0.5F);
    return static_cast<Channel>(std::min<std::int32_t>(rounded, alpha));
  }
}

template <class Mode, class Layout, class Channel = typename Layout::Channel>
void blendPixel(const Channel* background, const Channel* foreground, Channel* out) {
  const Channel behindAlpha = background[Layout::kAlpha];
  const Channel frontAlpha = foreground[Layout::kAlpha];
  if constexpr (PlainModes::kHolds<Mode>) {
    for (int c = 0; c < Layout::kChannels; ++c) {
      out[c] = blended(Mode(), background[c], foreground[c], behindAlpha, frontAlpha);
    }
  } else if constexpr (PolynomialModes::kHolds<Mode>) {
    for (int c = 0; c < Layout::kChannels; ++c) {
      out[c] = exactly(Mode(), c == Layout::kAlpha, background[c], foreground[c], behindAlpha, frontAlpha);
    }
  } else {
    const auto backgroundAlpha = static_cast<float>(behindAlpha);
    const auto foregroundAlpha = static_cast<float>(frontAlpha);
    const planes::Color b = colorOf<Layout>(background);
    const planes::Color f = colorOf<Layout>(foreground);
    const planes::Color shared = planes::both(Mode(), b, f, backgroundAlpha, foregroundAlpha);
    const Channel alpha = exactly(DarkenMode(), true, behindAlpha, frontAlpha, behindAlpha, frontAlpha);
    const auto color = [&](float each, float behind, float front) {
      return stored(sumOver(fullOf<Channel>(), each, behind, front, backgroundAlpha, foregroundAlpha), alpha);
    };
    out[Layout::kRed] = color(shared.red, b.red, f.red);
    out[Layout::kGreen] = color(shared.green, b.green, f.green);
    out[Layout::kBlue] = color(shared.blue, b.blue, f.blue);
    out[Layout::kAlpha] = alpha;
  }
}

template <class Mode, class Layout, class Channel = typename Layout::Channel>
void definition(const Channel* background, const Channel* foreground, Channel* out, std::size_t count) {
  for (std::size_t i = 0; i < count * Layout::kChannels; i += Layout::kChannels) {
    blendPixel<Mode, Layout>(background + i, foreground + i, out + i);
  }
}

template <class Layout, class... Modes, class Channel = typename Layout::Channel>
auto definitionAt(ModeList<Modes...>, std::size_t mode) {
  using Definition = void (*)(const Channel*, const Channel*, Channel*, std::size_t);
  static constexpr Definition kDefinitions[] = {&definition<Modes, Layout>...};
  return kDefinitions[mode];
}

}  // namespace

template <class List, class Layout>
void BlendDefinitions<List, Layout>::row(std::size_t mode, const Channel* background, const Channel* foreground,
                                         Channel* out, std::size_t count) {
  definitionAt<Layout>(List(), mode)(background, foreground, out, count);
}

template struct BlendDefinitions<PlainModes, RGBA8>;
template struct BlendDefinitions<PlainModes, ARGB8>;
template struct BlendDefinitions<PlainModes, RGBA16>;
template struct BlendDefinitions<PlainModes, RGBAFloat>;
template struct BlendDefinitions<PolynomialModes, RGBA8>;
template struct BlendDefinitions<PolynomialModes, ARGB8>;
template struct BlendDefinitions<PolynomialModes, RGBA16>;
template struct BlendDefinitions<PolynomialModes, RGBAFloat>;
template struct BlendDefinitions<QuotientModes, RGBA8>;
template struct BlendDefinitions<QuotientModes, ARGB8>;
template struct BlendDefinitions<QuotientModes, RGBA16>;
template struct BlendDefinitions<QuotientModes, RGBAFloat>;
template struct BlendDefinitions<NonSeparableModes, RGBA8>;
template struct BlendDefinitions<NonSeparableModes, ARGB8>;
template struct BlendDefinitions<NonSeparableModes, RGBA16>;
template struct BlendDefinitions<NonSeparableModes, RGBAFloat>;

}  // namespace vorto::effects
