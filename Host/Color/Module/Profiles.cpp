// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Color/Module/Profiles.h"

#include "Host/Color/KnownSpaces.h"
#include "Host/Color/Module/LittleCms.h"
#include "Host/Color/Module/MatrixProfile.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace host {
namespace {

ToneCurve makeCurve(const ProfileContext& context, const TransferCurve& curve) {
  constexpr std::array<double, 5> sRgb{2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
  ToneCurve made(curve.kind == TransferCurve::Kind::SRgb ? cmsBuildParametricToneCurve(context, 4, sRgb.data())
                                                         : cmsBuildGamma(context, curve.exponent));
  if (!made) context.fail("the curve cannot be made");
  return made;
}

Profile describedProfile(const ProfileContext& context, const Primaries& primaries, const TransferCurve& transfer) {
  const ToneCurve curve = makeCurve(context, transfer);
  cmsToneCurve* const curves[] = {curve.get(), curve.get(), curve.get()};
  const cmsCIExyY white{primaries.white.x, primaries.white.y, 1};
  const cmsCIExyYTRIPLE points{{primaries.red.x, primaries.red.y, 1},
                               {primaries.green.x, primaries.green.y, 1},
                               {primaries.blue.x, primaries.blue.y, 1}};
  Profile profile(cmsCreateRGBProfileTHR(context, &white, &points, curves));
  if (!profile) context.fail("the profile cannot be made");
  return profile;
}

Profile openProfile(const ProfileContext& context, const ColorSpace& space) {
  if (space.kind != ColorSpace::Kind::Profile) return describedProfile(context, space.primaries, space.curve);
  Profile profile(
      cmsOpenProfileFromMemTHR(context, space.profile->data(), static_cast<cmsUInt32Number>(space.profile->size())));
  if (!profile) context.fail("the ICC profile cannot be used");
  return profile;
}

// Pixels are red, green, blue and alpha; gray is in all three colors.
constexpr cmsUInt32Number kGrayPixels =
    FLOAT_SH(1) | COLORSPACE_SH(PT_GRAY) | CHANNELS_SH(1) | EXTRA_SH(3) | BYTES_SH(4);

// Two profiles as the library has them open.
struct OpenProfiles {
  OpenProfiles(const ColorSpace& fromSpace, const ColorSpace& toSpace)
      : from(openProfile(context, fromSpace)), to(openProfile(context, toSpace)) {}

  ProfileContext context;
  Profile from;
  Profile to;
};

// Of profiles that hold tables of colors: the library's way.
class TableTransform : public ColorTransform {
 public:
  TableTransform(std::unique_ptr<OpenProfiles> profiles, bool isFromGray) : profiles_(std::move(profiles)) {
    transform_.reset(cmsCreateTransformTHR(
        profiles_->context, profiles_->from.get(), isFromGray ? kGrayPixels : TYPE_RGBA_FLT, profiles_->to.get(),
        TYPE_RGBA_FLT, INTENT_RELATIVE_COLORIMETRIC, cmsFLAGS_BLACKPOINTCOMPENSATION | cmsFLAGS_NOCACHE));
    if (!transform_) profiles_->context.fail("the ICC profile cannot be used");
  }
  void apply(float* rgba, std::size_t pixels) override {
    constexpr std::size_t band = std::size_t{1} << 20;
    for (std::size_t i = 0; i < pixels; i += band) {
      float* const first = rgba + 4 * i;
      cmsDoTransform(transform_.get(), first, first, static_cast<cmsUInt32Number>(std::min(band, pixels - i)));
    }
  }

 private:
  std::unique_ptr<OpenProfiles> profiles_;
  LibraryTransform transform_;
};

// Of profiles that are a matrix and curves, whose black is 0: nothing is cut.
class MatrixTransform : public ColorTransform {
 public:
  MatrixTransform(std::unique_ptr<OpenProfiles> profiles, const MatrixProfile& from, const MatrixProfile& to)
      : profiles_(std::move(profiles)) {
    // Gray is the same light in all three colors.
    const Matrix matrix =
        from.isGray ? Matrix{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}} : product(inverse(to.matrix), from.matrix);
    for (std::size_t i = 0; i < 3; ++i) {
      for (std::size_t j = 0; j < 3; ++j) matrix_[i][j] = static_cast<float>(matrix[i][j]);
      toLight_.emplace_back(from.toLight[i]);
      fromLight_.emplace_back(to.fromLight[i]);
    }
  }
  void apply(float* rgba, std::size_t pixels) override {
    for (float* pixel = rgba; pixel != rgba + 4 * pixels; pixel += 4) {
      const float light[] = {toLight_[0](pixel[0]), toLight_[1](pixel[1]), toLight_[2](pixel[2])};
      for (std::size_t c = 0; c < 3; ++c) {
        pixel[c] = fromLight_[c](matrix_[c][0] * light[0] + matrix_[c][1] * light[1] + matrix_[c][2] * light[2]);
      }
    }
  }

 private:
  std::unique_ptr<OpenProfiles> profiles_;  // the curves are theirs
  float matrix_[3][3]{};
  std::vector<CurveTable> toLight_;
  std::vector<CurveTable> fromLight_;
};

void describe(const ProfileContext& context, void* profile, const std::string& text) {
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
  auto profiles = std::make_unique<OpenProfiles>(from, to);
  const auto fromMatrix = readMatrixProfile(profiles->from.get());
  const auto toMatrix = readMatrixProfile(profiles->to.get());
  if (fromMatrix && toMatrix && !toMatrix->isGray) {
    return std::make_unique<MatrixTransform>(std::move(profiles), *fromMatrix, *toMatrix);
  }
  return std::make_unique<TableTransform>(std::move(profiles), from.isGray);
}

void checkProfile(const ColorSpace& space) {
  const ColorSpace light = knownSpace(KnownSpace::LinearRec709, ColorSpace::Origin::Assumed);
  makeProfileTransform(space, light);
  if (!space.isGray) makeProfileTransform(light, space);
}

Bytes profileOf(const ColorSpace& space) {
  const ProfileContext context;
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
