// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/ParameterDocument.h"

#include "Host/Messages/Failure.h"
#include "Platform/Foundation/NSFiles.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Ports/VRTObjects.h"
#include "Ports/VRTPorts.h"
#include "Tests/Inspect/InspectFixture.h"

#include <gtest/gtest.h>

namespace {

class ParameterDocumentTest : public testing::Test {
 protected:
  ParameterDocumentTest() {
    for (QCPort* port : {static_cast<QCPort*>(first), static_cast<QCPort*>(second)}) {
      port->setValue(VRTHistogram::histogram());
    }
  }
  std::string at(const std::string& name) const { return folder.path() + "/" + name; }
  static VRTHistogram& levelsOf(QCPort& port) { return dynamic_cast<VRTHistogram&>(*port.rawValue()); }

  TemporaryFolder folder;
  QCPatch patch;
  VRTHistogramPort* const first = patch.addInputPort<VRTHistogramPort>("first").get();
  VRTHistogramPort* const second = patch.addInputPort<VRTHistogramPort>("second").get();
};

host::ExitCode codeOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const host::Failure& failure) {
    return failure.code;
  }
  return host::ExitCode::Success;
}

}  // namespace

TEST_F(ParameterDocumentTest, SavesWhatItLoads) {
  host::ParameterDocument document({first, second});
  levelsOf(*first).setSelectedChannel(3);
  EXPECT_TRUE(document.unsaved().empty());
  levelsOf(*first).setGamma(2.5, 3);
  EXPECT_EQ(document.unsaved(), std::vector<QCPort*>{first}) << "without a file it is not as it was";
  document.save(*first, at("a.levels"));
  EXPECT_FALSE(document.isModified(*first));
  EXPECT_EQ(document.file(*first), at("a.levels"));

  EXPECT_EQ(&document.load(at("a.levels"), second), second) << "the preferred port";
  EXPECT_EQ(levelsOf(*second).gammaForChannel(3), 2.5);
  EXPECT_EQ(levelsOf(*second).selectedChannel(), 3);
  levelsOf(*second).setGamma(2, 3);
  EXPECT_TRUE(document.isModified(*second));
  document.reset(*second);
  EXPECT_EQ(levelsOf(*second).gammaForChannel(3), 1);
  EXPECT_EQ(levelsOf(*first).gammaForChannel(3), 2.5);
  document.resetAll();
  EXPECT_EQ(levelsOf(*first).gammaForChannel(3), 1);
}

TEST_F(ParameterDocumentTest, KeepsTheFormatOfAFile) {
  host::ParameterDocument document({first, second});
  std::string reason;
  const auto bytes = PropertyListToBytes(*first->stateValue(), PropertyListFormat::Binary, &reason);
  ASSERT_TRUE(bytes && NSWriteFile(at("binary"), *bytes, &reason)) << reason;
  document.load(at("binary"), nullptr);
  document.save(*first, at("binary"));
  PropertyListFormat format = PropertyListFormat::Xml;
  const auto again = NSReadFile(at("binary"), &reason);
  ASSERT_TRUE(again && PropertyListFromBytes(*again, &reason, &format)) << reason;
  EXPECT_EQ(format, PropertyListFormat::Binary);

  const std::string text = "gamma=2";
  ASSERT_TRUE(NSWriteFile(at("text"), {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}, &reason));
  document.load(at("text"), second);
  EXPECT_EQ(levelsOf(*second).gammaForChannel(0), 2);
  EXPECT_EQ(document.file(*second), "") << "a text is not overwritten with a list";
  EXPECT_FALSE(document.isModified(*second));

  document.setFile(*first, at("binary"));
  EXPECT_FALSE(document.isModified(*first));
  levelsOf(*first).setGamma(3, 1);
  document.setFile(*first, at("binary"));
  EXPECT_TRUE(document.isModified(*first)) << "set after the file was read";
}

TEST_F(ParameterDocumentTest, RefusesWithoutChangingAnything) {
  host::ParameterDocument document({first, second});
  auto* gradient = patch.addInputPort<VRTGradientPort>("gradient").get();
  gradient->setValue(VRTGradient::gradient());
  host::ParameterDocument({gradient}).save(*gradient, at("gradient"));
  const auto before = first->stateValue();
  EXPECT_EQ(codeOf([&] { document.load(at("gradient"), first); }), host::ExitCode::Usage);
  EXPECT_EQ(codeOf([&] { document.load(at("nothing"), first); }), host::ExitCode::Input);
  EXPECT_EQ(codeOf([&] { document.save(*first, at("nowhere/file")); }), host::ExitCode::Output);
  EXPECT_EQ(first->stateValue(), before);
  EXPECT_EQ(document.file(*first), "");

  for (const char* kind : {"", "=", "volume=", "gradient"}) {
    EXPECT_EQ(codeOf([&] { host::ParameterDocument::ofState(kind + at("gradient")); }), host::ExitCode::Usage) << kind;
  }
  EXPECT_EQ(codeOf([&] { host::ParameterDocument::ofState("levels=" + at("gradient")); }), host::ExitCode::Usage);
  const auto alone = host::ParameterDocument::ofState("gradient=" + at("gradient"));
  ASSERT_EQ(alone->parameters().size(), 1u);
  EXPECT_EQ(alone->parameters()[0]->stateValue(), gradient->stateValue());
}
