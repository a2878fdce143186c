// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelGradient.h"

namespace {

using RGB = VRTChannelGradientSampleRGB;
using Alpha = VRTChannelGradientSampleAlpha;

std::string text(const VortoString& string) {
  char* const bytes = string.createUTF8Str();
  std::string result = bytes ? bytes : "";
  std::free(bytes);
  return result;
}

VRTChannelGradientSample& sampleAt(VRTChannelFolder& folder, std::size_t index) {
  return dynamic_cast<VRTChannelGradientSample&>(*folder.getDescendants().at(index));
}

using Numbers = std::vector<double>;

// What a sample holds, its color or its alpha first.
Numbers valuesOf(const VRTChannelBase* channel) {
  const auto& sample = dynamic_cast<const VRTChannelGradientSample&>(*channel);
  Numbers values;
  if (const auto* color = dynamic_cast<const RGB*>(channel)) values = {color->red, color->green, color->blue};
  if (const auto* opacity = dynamic_cast<const Alpha*>(channel)) values = {opacity->alpha};
  values.insert(values.end(), {sample.position, sample.middle, static_cast<double>(sample.interpolation)});
  return values;
}

Numbers positions(VRTChannelFolder& folder) {
  std::vector<double> result;
  for (std::size_t i = 0; i < folder.getNumberOfDescendants(); ++i) result.push_back(sampleAt(folder, i).position);
  return result;
}

std::string names(VRTChannelFolder& folder) {
  std::string result;
  for (const VRTChannelBase* child : folder.getDescendants()) result += " " + text(child->getName());
  return result;
}

class Alphas : public VRTChannelGradientAlphaFolder {
 public:
  void add(double position, double middle = 0.5, int interpolation = 1) {
    addSample(position, position, middle, interpolation);
  }
  void willBeModified() override { ++notifications; }

  int notifications = 0;
};

TEST(GradientFolder, CopiesAreEmpty) {
  Alphas folder;
  folder.add(0.3);
  folder.setName(VortoString("Mine"));
  const std::unique_ptr<VRTChannelBase> copy = folder.clone();
  EXPECT_EQ(dynamic_cast<VRTChannelGradientAlphaFolder&>(*copy).getNumberOfDescendants(), 0U);
  EXPECT_EQ(text(copy->getName()), "VRTChannelBase");

  VRTChannelGradient gradient;
  gradient.defaultKind = 2;
  gradient.setName(VortoString("Mine"));
  VRTChannelGradient gradientCopy(gradient);
  EXPECT_EQ(gradientCopy.rgbFolder.getNumberOfDescendants() + gradientCopy.alphaFolder.getNumberOfDescendants(), 0U);
  EXPECT_EQ(gradientCopy.defaultKind, 2);
  EXPECT_EQ(text(gradientCopy.getName()), "Mine");
}

TEST(GradientFolder, AddedSamplesHaveNoIDAndNoNameAndInsertedOnesKeepTheLook) {
  VRTChannelGradientRGBFolder colors;
  colors.addSample(0.0, 0.5, 1.0, 0.0, 0.6, 1);
  colors.addSample(1.0, 0.5, 0.0, 1.0, 0.5, 2);
  EXPECT_EQ(valuesOf(&sampleAt(colors, 0)), (Numbers{0, 0.5, 1, 0, 0.6, 1}));
  EXPECT_EQ(sampleAt(colors, 0).getID(), 0);
  EXPECT_EQ(text(sampleAt(colors, 0).getName()), "VRTChannelBase");
  const RGB* color = colors.insertSample(0.0, 0.25);
  EXPECT_EQ(valuesOf(color), (Numbers{0.25, 0.5, 0.75, 0.25, 0.5, 1}));
  EXPECT_EQ(color->getID(), 0);
  EXPECT_EQ(colors.getDescendants().back(), color);
  EXPECT_EQ(colors.insertSample(0.0, 2.0)->interpolation, 2);
  Alphas opacities;
  EXPECT_EQ(valuesOf(opacities.insertSample(0.0, 0.5)), (Numbers{0.0, 0.5, 0.5, 2}));
  EXPECT_EQ(opacities.notifications, 1);
}

TEST(GradientFolder, ClonesAndDeletesByID) {
  Alphas folder;
  folder.add(0.2, 0.3, 2);
  folder.add(0.6);
  EXPECT_EQ(folder.cloneSample(99), nullptr);
  folder.deleteSample(99);
  EXPECT_EQ(folder.notifications, 0);
  sampleAt(folder, 0).setID(42);
  const auto* copy = dynamic_cast<const Alpha*>(folder.cloneSample(42));
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(folder.notifications, 1);
  EXPECT_EQ(folder.getDescendants().back(), copy);
  EXPECT_EQ(valuesOf(copy), (Numbers{0.2, 0.2, 0.3, 2}));
  EXPECT_EQ(copy->getID(), 0);
  folder.deleteSample(42);
  EXPECT_EQ(positions(folder), (std::vector{0.6, 0.2}));
}

TEST(GradientFolder, SortingNamesAndMergesAndWhatIsNoNumberComesLast) {
  Alphas folder;
  for (const double position : {0.9, 0.1, 0.5, 0.1, -3.0}) folder.add(position);
  dynamic_cast<Alpha&>(sampleAt(folder, 3)).alpha = 0.77;
  const std::unique_ptr<VRTChannelRef> merged = folder.getDescendants()[1]->getRef();
  folder.sortAndRename();
  EXPECT_EQ(positions(folder), (std::vector{-3.0, 0.1, 0.5, 0.9}));
  EXPECT_EQ(names(folder), " Alpha1 Alpha2 Alpha3 Alpha4");
  EXPECT_EQ(dynamic_cast<Alpha&>(sampleAt(folder, 1)).alpha, 0.77);
  EXPECT_EQ(merged->getChannel(), nullptr);

  const double nan = std::numeric_limits<double>::quiet_NaN(), infinity = std::numeric_limits<double>::infinity();
  Alphas odd;
  for (const double position : {nan, 0.5, -nan, infinity, -0.0, 0.0}) odd.add(position);
  odd.sortAndRename();
  Numbers sorted = positions(odd);
  EXPECT_TRUE(std::isnan(sorted.back()));
  sorted.pop_back();
  EXPECT_EQ(sorted, (Numbers{0.0, 0.5, infinity}));
}

TEST(GradientFolder, FlopMirrorsTheSegments) {
  Alphas folder;
  folder.add(0.2, 0.3, 0);
  folder.add(0.7, 0.9, 2);
  folder.flop(0.0);
  EXPECT_EQ(valuesOf(&sampleAt(folder, 0)), (Numbers{0.2, 1 - 0.2, 0.3, 0}));
  EXPECT_EQ(valuesOf(&sampleAt(folder, 1)), (Numbers{0.7, 1 - 0.7, 1 - 0.3, 0}));
  EXPECT_EQ(folder.notifications, 0);
}

TEST(GradientFolder, SpreadMovesTheLastOfEqualPositions) {
  Alphas folder;
  for (const double position : {0.9, 0.1, 0.8, 0.1}) folder.add(position, 0.2);
  folder.spread(0.0);
  EXPECT_EQ(positions(folder), (std::vector{1.0, 0.1, 0.5, 0.0}));
  EXPECT_EQ(sampleAt(folder, 1).middle, 0.2);
  EXPECT_EQ(sampleAt(folder, 3).middle, 0.5);

  Alphas single;
  single.spread(0.0);
  single.add(0.4);
  single.spread(0.0);
  EXPECT_EQ(positions(single), std::vector{0.0});
}

TEST(GradientChannel, ResetAddsTheDefaultsAndReplacesWhatTheyMeet) {
  VRTChannelGradient gradient;
  EXPECT_EQ(names(gradient.rgbFolder) + names(gradient.alphaFolder), " RGB1 RGB2 Alpha1");
  gradient.rgbFolder.addSample(0.1, 0.2, 0.3, 0.5, 0.5, 0);
  for (int kind = 0; kind < 4; ++kind) {
    gradient.defaultKind = kind;
    gradient.reset();
    EXPECT_EQ(positions(gradient.rgbFolder), (std::vector{0.0, 0.5, 1.0}));
    EXPECT_EQ(valuesOf(&sampleAt(gradient.rgbFolder, 0))[0], kind == 1 ? 0 : 1) << "red";
    EXPECT_EQ(valuesOf(&sampleAt(gradient.rgbFolder, 2))[0], kind == 1 ? 1 : 0) << "red";
    EXPECT_EQ(gradient.alphaFolder.getNumberOfDescendants(), 1U);
  }
  EXPECT_EQ(gradient.getNumberOfDescendants(), 0U);
}

}  // namespace
