// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/DisplayColors.h"

#include "Host/Color/ColorModuleLoader.h"
#include "Host/Color/ColorPlan.h"
#include "Host/Messages/Failure.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace host {
namespace {

constexpr const char* kArrow = " \u2192 ";

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
  const auto way = [](std::unique_ptr<ColorTransform> made, const std::string& reason) {
    if (!made) throw Failure(ExitCode::Input, reason);
    return std::shared_ptr<ColorTransform>(std::move(made));
  };
  std::string reason;
  try {
    ColorSpace light = knownSpace(KnownSpace::LinearRec709, ColorSpace::Origin::Assumed);
    if (look.display.kind == DisplayChoice::Kind::View) {
      if (isInLight && !module().findSpace("scene_linear", &light, &reason)) throw Failure(ExitCode::Input, reason);
      fromLight_ =
          way(module().makeViewTransform(isInLight ? light : space, look.display.display, look.display.view, &reason),
              reason);
      text_ = spaceText(space) + kArrow + look.display.display + " / " + look.display.view;
    } else {
      const ColorSpace screen = knownSpace(KnownSpace::SRgb, ColorSpace::Origin::Assumed);
      const ColorSpace& from = isInLight ? light : space;
      if (needsConversion(from, screen)) fromLight_ = way(module().makeTransform(from, screen, &reason), reason);
      text_ = spaceText(space) + (needsConversion(space, screen) ? kArrow + spaceText(screen) : "");
    }
    if (isInLight && needsConversion(space, light))
      toLight_ = way(module().makeTransform(space, light, &reason), reason);
  } catch (const Failure& failure) {
    toLight_.reset();
    fromLight_.reset();
    text_.clear();
    reason_ = failure.what();
  }
}

ColorConversion* DisplayColors::conversion(const ColorSpace& space, const ColorLook& look) {
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
  }
  return conversion_.get();
}

}  // namespace host
