// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// Pixels of an image at places between its pixels. A place is in pixels, 0 at the image's upper left corner, so that
// pixel centers are at halves; outside the image everything is transparent black. Pixels are interpolated as they are,
// premultiplied. Integers round to the nearest, within 0 and alpha.
namespace vorto::effects {

// Interpolation with a kernel for columns times one for rows, the textbook's (G. Wolberg, Digital Image Warping, 1990,
// 5.4): linear, the triangle 1 - |t| up to 1; or Lanczos's sinc(t) sinc(t / 3) up to 3. Where an image becomes smaller,
// the kernel becomes wider by as much, so that every pixel of the image takes part: it is k(t scale). Weights are
// normalised, those of places outside the image included.
class ResampleKernel {
 public:
  enum class Kind { Linear, Lanczos3 };
  // The scales are those of the image's columns and rows, above 0; the kernel of 1 serves for larger ones.
  ResampleKernel(Kind kind, double scaleX, double scaleY);

  Kind kind() const { return kind_; }
  bool isWidened() const { return scaleX_ < 1 || scaleY_ < 1; }
  double scaleX() const { return scaleX_; }
  double scaleY() const { return scaleY_; }
  // How far it reaches, in pixels of the image.
  double reachX() const;
  double reachY() const;

  // Of Lanczos at a scale of 1, at the phase p / kPhases between two pixels: the weights of the two pixels before the
  // place's left neighbor and so on, six of kTaps, then zeros. What lies between two phases is on a straight line, and
  // within 1/200,000 of the kernel.
  static constexpr std::size_t kPhases = 512;
  static constexpr std::size_t kTaps = 8;
  const float* lanczosPhase(std::size_t p) const { return phases_.data() + p * kTaps; }

  // The weights of `count` pixels from `first` for a place on one axis, normalised over all that the kernel reaches.
  void weightsAt(double place, double scale, std::int64_t& first, std::vector<float>& weights) const;

 private:
  double reach() const { return kind_ == Kind::Linear ? 1 : 3; }
  double valueAt(double t) const;

  Kind kind_;
  double scaleX_, scaleY_;
  std::vector<float> phases_;   // kPhases + 2 times kTaps: the last twice, for a phase that rounds to 1
  std::vector<double> values_;  // of Lanczos at t = i / kPhases
};

template <class Channel>
struct ResampleSource {
  const Channel* pixels;
  std::size_t rowBytes;
  std::int64_t width, height;

  const Channel* at(std::int64_t x, std::int64_t y) const {
    return reinterpret_cast<const Channel*>(reinterpret_cast<const std::uint8_t*>(pixels) +
                                            static_cast<std::size_t>(y) * rowBytes) +
           4 * x;
  }
};

// The places of a row of pixels: of pixel i, (x + i stepX, y + i stepY). All within 2^31 of the image.
struct ResamplePlaces {
  double x, y, stepX, stepY;

  double xOf(std::size_t i) const { return x + static_cast<double>(i) * stepX; }
  double yOf(std::size_t i) const { return y + static_cast<double>(i) * stepY; }
};

// Pixels `first` to `end` of a row, for RGBA8, ARGB8, RGBA16 and RGBAFloat (PixelLayout.h); `out` is pixel 0.
template <class Layout>
void resampleRow(const ResampleSource<typename Layout::Channel>& in, const ResampleKernel& kernel,
                 const ResamplePlaces& places, std::size_t first, std::size_t end, typename Layout::Channel* out);

// The definition.
template <class Layout>
void resampleRowScalar(const ResampleSource<typename Layout::Channel>& in, const ResampleKernel& kernel,
                       const ResamplePlaces& places, std::size_t first, std::size_t end, typename Layout::Channel* out);

// The pixel in which each place lies.
template <class Channel>
void nearestRow(const ResampleSource<Channel>& in, const ResamplePlaces& places, std::size_t first, std::size_t end,
                Channel* out);

// The largest whole number that is not above the value, which is within 2^62.
inline std::int64_t floorOf(double value) {
  const auto whole = static_cast<std::int64_t>(value);
  return whole - (value < static_cast<double>(whole) ? 1 : 0);
}

// Where a kernel of a scale of 1 begins on one axis, and how far the place is from the pixel in its middle, 0 to 1.
struct ResampleStart {
  std::int64_t first;
  float phase;

  ResampleStart(double place, std::int64_t before) {
    const double fromCenter = place - 0.5;
    const std::int64_t left = floorOf(fromCenter);
    first = left - before;
    phase = static_cast<float>(fromCenter - static_cast<double>(left));
  }
};

// The weights from there on.
template <std::size_t taps>
struct ResampleWeights {
  float values[taps + 4];  // vectors may load a few more than the taps

  ResampleWeights(const ResampleKernel& kernel, float phase) {
    for (std::size_t i = taps; i < taps + 4; ++i) values[i] = 0;
    if constexpr (taps == 2) {
      values[0] = 1 - phase;
      values[1] = phase;
    } else {
      const float scaled = phase * static_cast<float>(ResampleKernel::kPhases);
      const auto index = static_cast<std::size_t>(scaled);  // kPhases itself where the phase rounds to 1
      const float part = scaled - static_cast<float>(index);
      const float* const a = kernel.lanczosPhase(index);
      const float* const b = kernel.lanczosPhase(index + 1);
      for (std::size_t i = 0; i < taps; ++i) values[i] = a[i] + (b[i] - a[i]) * part;
    }
  }
};

}  // namespace vorto::effects
