// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/DisplayRendering.h"

#include "Host/Color/ColorConversion.h"
#include "Host/Messages/Failure.h"
#include "Host/Viewer/AxisSampling.h"
#include "Host/Viewer/DisplayRows.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelLayout.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <vector>

namespace host {
namespace {

using Float4 = float __attribute__((vector_size(16)));

// The level whose pixels are at most as large as those of the screen, but no less than half.
unsigned levelFor(const VortoBitmap& bitmap, QSize placed) {
  const double ratio = std::min(static_cast<double>(bitmap.width) / placed.width(),
                                static_cast<double>(bitmap.height) / placed.height());
  return ratio < 2 ? 0 : static_cast<unsigned>(std::log2(ratio) + 1e-9);
}

// How a picture's pixels become those of the screen, apart from where they lie.
struct PixelLook {
  ChannelView channels;
  ColorWay colors;
};

// The picture's rows as the screen has them, before they are laid on a ground.
class ShownRows {
 public:
  ShownRows(const VortoBitmap& bitmap, const VortoBitmap& level, unsigned levelNumber, const DisplayPlace& place,
            const PixelLook& look)
      : level_(level),
        look_(look),
        columns_(place.visible.left() - place.place.left(), place.visible.width(), place.place.width(),
                 std::ldexp(bitmap.width, -static_cast<int>(levelNumber)), level.width),
        rows_(place.visible.top() - place.place.top(), place.visible.height(), place.place.height(),
              std::ldexp(bitmap.height, -static_cast<int>(levelNumber)), level.height),
        isPlain_(columns_.isOneToOne() && rows_.isOneToOne()),
        isBytes_(TCPixelLayoutOf(level.formatCode).number == VortoPixelLayout::Number::Byte),
        seen_(columns_.end() - columns_.begin()),
        shown_(static_cast<std::size_t>(columns_.count())) {
    if (isPlain_) {
      picture_.resize(seen_);
      floats_.resize(4 * seen_);
    } else {
      sums_.resize(4 * seen_);
      floats_.resize(4 * shown_.size());
      for (LoadedRow& row : loaded_) row.floats.resize(4 * seen_);
    }
  }

  // Of the screen's row `y`: good until the next.
  const QRgb* row(int y, bool* isOpaque) {
    if (!isPlain_) {
      isOpaque_ = sampled(y);
    } else if (const auto source = rows_.taps(y).first; present_ != source) {
      isOpaque_ = plain(source);
      present_ = source;
    }
    *isOpaque = isOpaque_;
    return shown_.data();
  }

 private:
  struct LoadedRow {
    std::int64_t y = -1;
    std::vector<float> floats;
  };

  bool finish(float* floats, std::size_t pixels, QRgb* target) {
    isolateChannel(look_.channels, floats, pixels);
    if (!look_.colors.exact || look_.channels == ChannelView::Alpha) return roundRow(floats, pixels, target);
    if (look_.colors.bytes) return finishQuickly(floats, pixels, target);
    convert(floats, pixels);
    return roundRow(floats, pixels, target);
  }

  void convert(float* floats, std::size_t pixels) const {
    look_.colors.exact->convert(reinterpret_cast<const std::byte*>(floats),
                                {SampleType::Float, AlphaKind::Premultiplied}, floats, pixels);
  }

  // Opaque pixels by the table; what is there of the others is gathered and converted.
  bool finishQuickly(const float* floats, std::size_t pixels, QRgb* target) {
    const ByteLook& bytes = *look_.colors.bytes;
    others_.clear();
    places_.clear();
    for (std::size_t i = 0; i < pixels; ++i) {
      const float* const pixel = floats + 4 * i;
      if (pixel[3] == 1) {
        target[i] = bytes(pixel);
      } else {
        others_.insert(others_.end(), pixel, pixel + 4);
        places_.push_back(i);
      }
    }
    if (places_.empty()) return true;
    rounded_.resize(places_.size());
    convert(others_.data(), places_.size());
    const bool isOpaque = roundRow(others_.data(), places_.size(), rounded_.data());
    for (std::size_t i = 0; i < places_.size(); ++i) target[places_[i]] = rounded_[i];
    return isOpaque;
  }

  // Pixels that are shown whole: each is made once, and repeated.
  bool plain(std::uint32_t y) {
    const bool isRepeated = seen_ != shown_.size();
    QRgb* const target = isRepeated ? picture_.data() : shown_.data();
    const bool isCopied = isBytes_ && (!look_.colors.exact || look_.channels == ChannelView::Alpha) &&
                          look_.channels != ChannelView::Luminance;
    bool isOpaque = false;
    if (isCopied) {
      isOpaque = copyRow(level_, y, columns_.begin(), seen_, look_.channels, target);
    } else {
      loadRow(level_, y, columns_.begin(), seen_, floats_.data());
      isOpaque = finish(floats_.data(), seen_, target);
    }
    if (isRepeated) {
      for (int x = 0; x < columns_.count(); ++x) {
        shown_[static_cast<std::size_t>(x)] = picture_[columns_.taps(x).first - columns_.begin()];
      }
    }
    return isOpaque;
  }

  const float* loaded(std::uint32_t y) {
    LoadedRow& row = loaded_[y % loaded_.size()];
    if (row.y != y) {
      loadRow(level_, y, columns_.begin(), seen_, row.floats.data());
      row.y = y;
    }
    return row.floats.data();
  }

  bool sampled(int y) {
    const AxisSampling::Taps down = rows_.taps(y);
    const float* mean = nullptr;
    if (down.count == 1) {
      mean = loaded(down.first);
    } else {
      for (std::uint32_t i = 0; i < down.count; ++i) {
        addRow(loaded(down.first + i), down.weights[i], sums_.size(), sums_.data(), i == 0);
      }
      mean = sums_.data();
    }
    for (int x = 0; x < columns_.count(); ++x) {
      const AxisSampling::Taps across = columns_.taps(x);
      const float* source = mean + std::size_t{4} * (across.first - columns_.begin());
      Float4 sum{};
      for (std::uint32_t i = 0; i < across.count; ++i, source += 4) {
        Float4 pixel;
        std::memcpy(&pixel, source, sizeof pixel);
        sum += across.weights[i] * pixel;
      }
      std::memcpy(floats_.data() + std::size_t{4} * static_cast<std::size_t>(x), &sum, sizeof sum);
    }
    return finish(floats_.data(), shown_.size(), shown_.data());
  }

  const VortoBitmap& level_;
  const PixelLook look_;
  const AxisSampling columns_;
  const AxisSampling rows_;
  const bool isPlain_;
  const bool isBytes_;
  const std::size_t seen_;  // the picture's columns that are
  std::vector<QRgb> shown_;
  std::vector<QRgb> picture_;
  std::vector<float> floats_;
  std::vector<float> sums_;
  std::vector<float> others_;        // pixels that are not opaque
  std::vector<std::size_t> places_;  // where they belong
  std::vector<QRgb> rounded_;
  std::array<LoadedRow, 4> loaded_;
  std::int64_t present_ = -1;
  bool isOpaque_ = false;
};

// color + ground x (1 - alpha), rounded, red and blue at once; opaque.
QRgb laidOver(QRgb color, QRgb ground) {
  const unsigned rest = 255 - qAlpha(color);
  const auto behind = [rest](unsigned pair) {
    const unsigned product = pair * rest + 0x800080u;
    return ((product + (product >> 8 & 0xFF00FFu)) >> 8) & 0xFF00FFu;
  };
  return 0xFF000000u | ((color & 0xFFFFFFu) + behind(ground & 0xFF00FFu) + (behind(ground >> 8 & 0xFFu) << 8));
}

// A row on the ground; `x` and `y` count from the picture's corner.
void layRow(const QRgb* row, int pixels, const DisplayGround& ground, int x, int y, QRgb* target) {
  const int cell = std::max(1, ground.cell);
  const bool isSwapped = y / cell % 2 != 0;
  for (int i = 0; i < pixels;) {
    const int end = std::min(pixels, i + cell - (x + i) % cell);
    const QRgb behind = ((x + i) / cell % 2 != 0) != isSwapped ? ground.dark : ground.light;
    for (; i < end; ++i) target[i] = laidOver(row[i], behind);
  }
}

}  // namespace

QImage displayImage(PicturePyramid& pyramid, const DisplayPlace& place, const DisplayGround& ground,
                    ChannelView channels, const ColorWay& colors) {
  const VortoBitmap& bitmap = *pyramid.bitmap();
  if (place.visible.isEmpty() || !bitmap.data || !TCPixelLayoutOf(bitmap.formatCode).isExchanged) return {};
  QImage image(place.visible.size(), QImage::Format_RGB32);
  if (image.isNull()) throw Failure(ExitCode::Unexpected, "not enough memory for the preview");
  const unsigned levelNumber = levelFor(bitmap, place.place.size());
  ShownRows rows(bitmap, pyramid.level(levelNumber), levelNumber, place, {channels, colors});
  const QPoint corner = place.visible.topLeft() - place.place.topLeft();
  for (int y = 0; y < image.height(); ++y) {
    checkNotEnded(pyramid.ends());
    bool isOpaque = false;
    const QRgb* const row = rows.row(y, &isOpaque);
    auto* const target = reinterpret_cast<QRgb*>(image.scanLine(y));
    if (isOpaque) {
      std::memcpy(target, row, sizeof(QRgb) * static_cast<std::size_t>(image.width()));
    } else {
      layRow(row, image.width(), ground, corner.x(), corner.y() + y, target);
    }
  }
  return image;
}

}  // namespace host
