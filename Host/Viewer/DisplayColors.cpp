// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/DisplayColors.h"

#include "Host/Color/ColorModuleLoader.h"
#include "Host/Color/ColorPlan.h"
#include "Host/Messages/Failure.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <utility>

namespace host {
namespace {

constexpr const char* kArrow = " \u2192 ";

std::string nameOf(const ColorSpace& space) {
  return space.name.empty() ? spaceText(space) : space.name;
}

// To light, brighter or darker there, to the screen's samples, and by the gamma.
class LookTransform : public ColorTransform {
 public:
  LookTransform(std::shared_ptr<ColorTransform> toLight, std::shared_ptr<ColorTransform> fromLight,
                const ColorLook& look)
      : toLight_(std::move(toLight)), fromLight_(std::move(fromLight)), look_(look) {}

  void apply(float* rgba, std::size_t pixels) override {
    if (toLight_) toLight_->apply(rgba, pixels);
    if (look_.exposure != 0) expose(rgba, pixels);
    if (look_.isLuminance) takeLuminance(rgba, pixels);
    if (fromLight_) fromLight_->apply(rgba, pixels);
    if (look_.gamma != 1) raise(rgba, pixels);
  }

 private:
  void expose(float* rgba, std::size_t pixels) const {
    const auto gain = static_cast<float>(std::exp2(look_.exposure));
    for (std::size_t i = 0; i < 4 * pixels; i += 4) {
      for (std::size_t c = 0; c < 3; ++c) rgba[i + c] *= gain;
    }
  }
  static void takeLuminance(float* rgba, std::size_t pixels) {
    for (std::size_t i = 0; i < 4 * pixels; i += 4) {
      const float luminance = 0.2126f * rgba[i] + 0.7152f * rgba[i + 1] + 0.0722f * rgba[i + 2];
      std::fill_n(rgba + i, 3, luminance);
    }
  }
  void raise(float* rgba, std::size_t pixels) const {
    const auto exponent = static_cast<float>(1 / look_.gamma);
    for (std::size_t i = 0; i < 4 * pixels; i += 4) {
      for (std::size_t c = 0; c < 3; ++c) rgba[i + c] = std::pow(std::max(0.0f, rgba[i + c]), exponent);
    }
  }

  std::shared_ptr<ColorTransform> toLight_;
  std::shared_ptr<ColorTransform> fromLight_;
  ColorLook look_;
};

using Matrix = std::array<std::array<double, 3>, 3>;

double toLight(const TransferCurve& curve, double value) {
  const double size = std::abs(value);
  switch (curve.kind) {
    case TransferCurve::Kind::Linear:
      return value;
    case TransferCurve::Kind::SRgb:
      return std::copysign(size <= 0.04045 ? size / 12.92 : std::pow((size + 0.055) / 1.055, 2.4), value);
    case TransferCurve::Kind::Power:
      break;
  }
  return std::copysign(std::pow(size, curve.exponent), value);
}

double sRgbOfLight(double light) {
  return light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

// What a transform of light does, which is a matrix.
Matrix matrixOf(ColorTransform& transform) {
  float basis[] = {1, 0, 0, 1, 0, 1, 0, 1, 0, 0, 1, 1};
  transform.apply(basis, 3);
  Matrix matrix{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) matrix[i][j] = static_cast<double>(basis[4 * j + i]);
  }
  return matrix;
}

// Brighter or darker, and of luminance the sum of all rows.
void applyLook(const ColorLook& look, Matrix* matrix) {
  constexpr std::array<double, 3> weights{0.2126, 0.7152, 0.0722};
  const Matrix light = *matrix;
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      const double luminance = weights[0] * light[0][j] + weights[1] * light[1][j] + weights[2] * light[2][j];
      (*matrix)[i][j] = (look.isLuminance ? luminance : light[i][j]) * std::exp2(look.exposure);
    }
  }
}

// Whether colors that say much about both become the same bytes.
bool isSame(const ByteLook& bytes, ColorConversion& exact) {
  constexpr float slack = 0.51f;
  constexpr float probes[] = {0, 1, 0.18f, 0.001f, 0.5f, -0.1f, 0.03f, 0.9f, 1.5f, 0.3f, 0.7f, 0.008f, 0.1f};
  constexpr std::size_t count = std::size(probes);
  for (std::size_t i = 0; i < count * count; ++i) {
    float pixel[] = {probes[i % count], probes[i / count], probes[(i + i / count) % count], 1};
    const QRgb found = bytes(pixel);
    exact.convert(reinterpret_cast<const std::byte*>(pixel), {SampleType::Float, AlphaKind::None}, pixel, 1);
    const int shown[] = {qRed(found), qGreen(found), qBlue(found)};
    for (std::size_t c = 0; c < 3; ++c) {
      if (!(std::abs(255 * std::clamp(pixel[c], 0.0f, 1.0f) - static_cast<float>(shown[c])) <= slack)) return false;
    }
  }
  return true;
}

}  // namespace

ColorModule& DisplayColors::module() {
  if (!module_) module_ = newColorModule(userConfiguration());
  return *module_;
}

std::vector<DisplayView> DisplayColors::views() {
  std::vector<DisplayView> views;
  try {
    if (module_ || !userConfiguration().empty()) module().listViews(&views, nullptr);
  } catch (const Failure&) {
    views.clear();
  }
  return views;
}

void DisplayColors::findWay(const ColorSpace& space, const ColorLook& look, bool isInLight) {
  toLight_.reset();
  fromLight_.reset();
  text_.clear();
  reason_.clear();
  if (look.display.kind == DisplayChoice::Kind::Off || space.kind == ColorSpace::Kind::Raw) return;
  const auto made = [](std::unique_ptr<ColorTransform> transform, const std::string& reason) {
    if (!transform) throw Failure(ExitCode::Input, reason);
    return std::shared_ptr<ColorTransform>(std::move(transform));
  };
  std::string reason;
  try {
    ColorSpace light = knownSpace(KnownSpace::LinearRec709, ColorSpace::Origin::Assumed);
    if (look.display.kind == DisplayChoice::Kind::View) {
      if (isInLight && !module().findSpace("scene_linear", &light, &reason)) throw Failure(ExitCode::Input, reason);
      fromLight_ =
          made(module().makeViewTransform(isInLight ? light : space, look.display.display, look.display.view, &reason),
               reason);
      text_ = nameOf(space) + kArrow + look.display.display + " / " + look.display.view;
    } else {
      const ColorSpace screen = knownSpace(KnownSpace::SRgb, ColorSpace::Origin::Assumed);
      const ColorSpace& from = isInLight ? light : space;
      if (needsConversion(from, screen)) fromLight_ = made(module().makeTransform(from, screen, &reason), reason);
      text_ = nameOf(space) + (needsConversion(space, screen) ? kArrow + nameOf(screen) : "");
    }
    if (isInLight && needsConversion(space, light))
      toLight_ = made(module().makeTransform(space, light, &reason), reason);
  } catch (const Failure& failure) {
    toLight_.reset();
    fromLight_.reset();
    text_.clear();
    reason_ = failure.what();
  }
}

// Of known and described spaces, and of values as they are.
void DisplayColors::findBytes(const ColorSpace& space, const ColorLook& look, bool isInLight) {
  bytes_.reset();
  if (!conversion_ || look.display.kind == DisplayChoice::Kind::View) return;
  ByteLook::Steps steps;
  const double exponent = 1 / look.gamma;
  const auto raised = [exponent](double value) {
    return exponent == 1 ? value : std::pow(std::max(0.0, value), exponent);
  };
  if (!toLight_ && !fromLight_) {
    steps.fromLight = raised;
  } else {
    const bool isFormula = space.kind == ColorSpace::Kind::Known || space.kind == ColorSpace::Kind::Described;
    if (!isFormula) return;
    const TransferCurve curve = space.curve;
    if (curve.kind != TransferCurve::Kind::Linear) steps.toLight = [curve](double v) { return toLight(curve, v); };
    steps.fromLight = [raised](double light) { return raised(sRgbOfLight(light)); };
    const ColorSpace light = describedSpace(space.primaries, {}, ColorSpace::Origin::Assumed);
    const ColorSpace screen = knownSpace(KnownSpace::LinearRec709, ColorSpace::Origin::Assumed);
    if (needsConversion(light, screen)) {
      const auto transform = module().makeTransform(light, screen, nullptr);
      if (!transform) return;
      steps.matrix = matrixOf(*transform);
    }
  }
  if (isInLight) applyLook(look, &steps.matrix);
  auto bytes = std::make_unique<ByteLook>(steps);
  if (isSame(*bytes, *conversion_)) bytes_ = std::move(bytes);
}

ColorWay DisplayColors::way(const ColorSpace& space, const ColorLook& look) {
  const bool isInLight = look.exposure != 0 || look.isLuminance;
  const bool isSameWay = space_ && isSameSpace(*space_, space) && display_ == look.display && isInLight_ == isInLight;
  if (!isSameWay) {
    findWay(space, look, isInLight);
    space_ = space;
    display_ = look.display;
    isInLight_ = isInLight;
  }
  if (!isSameWay || look_ != look) {
    const bool isNeutral = !toLight_ && !fromLight_ && !isInLight && look.gamma == 1;
    conversion_ = isNeutral
                      ? nullptr
                      : std::make_unique<ColorConversion>(std::make_unique<LookTransform>(toLight_, fromLight_, look));
    look_ = look;
    findBytes(space, look, isInLight);
  }
  return {conversion_.get(), bytes_.get()};
}

}  // namespace host
