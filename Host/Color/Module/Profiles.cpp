// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Color/Module/Profiles.h"

#include "Host/Color/KnownSpaces.h"

#include <lcms2.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

namespace host {
namespace {

struct Closing {
  void operator()(void* handle) const { cmsCloseProfile(handle); }
};
using Profile = std::unique_ptr<void, Closing>;

struct Deleting {
  void operator()(void* handle) const { cmsDeleteTransform(handle); }
};
using Transform = std::unique_ptr<void, Deleting>;

struct Freeing {
  void operator()(cmsToneCurve* curve) const { cmsFreeToneCurve(curve); }
};
using Curve = std::unique_ptr<cmsToneCurve, Freeing>;

// The library's state, with the last error that it reported.
class Context {
 public:
  Context() : context_(cmsCreateContext(nullptr, this)) {
    if (!context_) throw std::bad_alloc();
    cmsSetLogErrorHandlerTHR(context_, [](cmsContext context, cmsUInt32Number, const char* text) {
      static_cast<Context*>(cmsGetContextUserData(context))->error_ = text;
    });
  }
  ~Context() { cmsDeleteContext(context_); }
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;

  operator cmsContext() const { return context_; }
  [[noreturn]] void fail(const std::string& what) const {
    throw std::runtime_error(what + (error_.empty() ? "" : ": " + error_));
  }

 private:
  cmsContext context_;
  std::string error_;
};

Curve makeCurve(const Context& context, const TransferCurve& curve) {
  constexpr std::array<double, 5> sRgb{2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
  Curve made(curve.kind == TransferCurve::Kind::SRgb ? cmsBuildParametricToneCurve(context, 4, sRgb.data())
                                                     : cmsBuildGamma(context, curve.exponent));
  if (!made) context.fail("the curve cannot be made");
  return made;
}

Profile describedProfile(const Context& context, const Primaries& primaries, const TransferCurve& transfer) {
  const Curve curve = makeCurve(context, transfer);
  cmsToneCurve* const curves[] = {curve.get(), curve.get(), curve.get()};
  const cmsCIExyY white{primaries.white.x, primaries.white.y, 1};
  const cmsCIExyYTRIPLE points{{primaries.red.x, primaries.red.y, 1},
                               {primaries.green.x, primaries.green.y, 1},
                               {primaries.blue.x, primaries.blue.y, 1}};
  Profile profile(cmsCreateRGBProfileTHR(context, &white, &points, curves));
  if (!profile) context.fail("the profile cannot be made");
  return profile;
}

Profile openProfile(const Context& context, const ColorSpace& space) {
  if (space.kind != ColorSpace::Kind::Profile) return describedProfile(context, space.primaries, space.curve);
  Profile profile(
      cmsOpenProfileFromMemTHR(context, space.profile->data(), static_cast<cmsUInt32Number>(space.profile->size())));
  if (!profile) context.fail("the ICC profile cannot be used");
  return profile;
}

// Pixels are red, green, blue and alpha; gray is in all three colors.
constexpr cmsUInt32Number kGrayPixels =
    FLOAT_SH(1) | COLORSPACE_SH(PT_GRAY) | CHANNELS_SH(1) | EXTRA_SH(3) | BYTES_SH(4);

class ProfileTransform : public ColorTransform {
 public:
  ProfileTransform(const ColorSpace& from, const ColorSpace& to)
      : from_(openProfile(context_, from)), to_(openProfile(context_, to)) {
    transform_.reset(cmsCreateTransformTHR(context_, from_.get(), from.isGray ? kGrayPixels : TYPE_RGBA_FLT, to_.get(),
                                           TYPE_RGBA_FLT, INTENT_RELATIVE_COLORIMETRIC,
                                           cmsFLAGS_BLACKPOINTCOMPENSATION | cmsFLAGS_NOCACHE));
    if (!transform_) context_.fail("the ICC profile cannot be used");
  }
  void apply(float* rgba, std::size_t pixels) override {
    constexpr std::size_t band = std::size_t{1} << 20;
    for (std::size_t i = 0; i < pixels; i += band) {
      float* const first = rgba + 4 * i;
      cmsDoTransform(transform_.get(), first, first, static_cast<cmsUInt32Number>(std::min(band, pixels - i)));
    }
  }

 private:
  Context context_;
  Profile from_;
  Profile to_;
  Transform transform_;
};

void describe(const Context& context, void* profile, const std::string& text) {
  cmsMLU* const texts = cmsMLUalloc(context, 1);
  const bool isWritten = texts && cmsMLUsetASCII(texts, "en", "US", text.c_str()) &&
                         cmsWriteTag(profile, cmsSigProfileDescriptionTag, texts);
  cmsMLUfree(texts);
  if (!isWritten) context.fail("the profile cannot be described");
}

// ICC.1: the header's date and time, six numbers of two bytes. The library puts the time of day there.
void setDate(Bytes& profile) {
  constexpr std::array<std::uint8_t, 12> date{0x07, 0xE8, 0, 1, 0, 1, 0, 0, 0, 0, 0, 0};
  std::copy(date.begin(), date.end(), profile.begin() + 24);
}

}  // namespace

std::unique_ptr<ColorTransform> makeProfileTransform(const ColorSpace& from, const ColorSpace& to) {
  return std::make_unique<ProfileTransform>(from, to);
}

void checkProfile(const ColorSpace& space) {
  const ColorSpace light = knownSpace(KnownSpace::LinearRec709, ColorSpace::Origin::Assumed);
  makeProfileTransform(space, light);
  if (!space.isGray) makeProfileTransform(light, space);
}

Bytes profileOf(const ColorSpace& space) {
  const Context context;
  const Profile profile = describedProfile(context, space.primaries, space.curve);
  describe(context, profile.get(), space.name.empty() ? "Gamma and primaries of a picture" : space.name);
  cmsUInt32Number size = 0;
  if (!cmsSaveProfileToMem(profile.get(), nullptr, &size)) context.fail("the profile cannot be written");
  Bytes bytes(size);
  if (!cmsSaveProfileToMem(profile.get(), bytes.data(), &size)) context.fail("the profile cannot be written");
  setDate(bytes);
  return bytes;
}

}  // namespace host
