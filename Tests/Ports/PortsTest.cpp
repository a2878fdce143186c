// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSClassTable.h"
#include "Platform/Foundation/NSValues.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Ports/VRTImage.h"
#include "Registry/BrivoCompatability.h"
#include "TarnCore/TCBitmap.h"

class NSTarnView {};

namespace {

TEST(ParameterPorts, TakeTheirOwnClassInEitherGeneration) {
  const std::vector<std::vector<std::shared_ptr<QCObjectPort>>> ports = {
      {std::make_shared<VRTGradientPort>("p"), std::make_shared<TarnGradientPort>("p")},
      {std::make_shared<VRTHistogramPort>("p"), std::make_shared<TarnHistogramPort>("p")},
      {std::make_shared<VRTOpaqueDataPort>("p"), std::make_shared<TarnOpaqueDataPort>("p")},
  };
  const std::vector<std::vector<NSObjectRef>> values = {
      {std::make_shared<VRTGradient>(), std::make_shared<TarnGradient>()},
      {std::make_shared<VRTHistogram>(), std::make_shared<TarnHistogram>()},
      {std::make_shared<VRTOpaqueData>(), std::make_shared<TarnOpaqueData>()},
  };
  for (std::size_t kind = 0; kind < ports.size(); ++kind) {
    for (const auto& port : ports[kind]) {
      for (std::size_t other = 0; other < values.size(); ++other) {
        for (const NSObjectRef& value : values[other]) {
          EXPECT_EQ(port->setValue(value), kind == other) << port->className() << " with a " << value->className();
        }
      }
      EXPECT_EQ(port->value(), values[kind].back());
      EXPECT_FALSE(port->setValue(NSNumber::numberWithInt(1)));
      EXPECT_FALSE(port->setValue(std::make_shared<QCObject>()));
      EXPECT_EQ(port->objectClass(), "VRT" + values[kind].front()->className().substr(3));
    }
  }
}

class PatchWithEditor : public QCPatch, public VRTOpaqueDataViewing {
 public:
  NSTarnView* viewForOpaqueDataPort(VRTOpaqueDataPort* port) override {
    given = port;
    return &view;
  }
  NSTarnView view;
  VRTOpaqueDataPort* given = nullptr;
};

TEST(ParameterPorts, OpaqueDataGetsItFromItsNode) {
  PatchWithEditor patch;
  const auto port = patch.addInputPort<VRTOpaqueDataPort>("inputData");
  EXPECT_EQ(port->setupParameterView(), &patch.view);
  EXPECT_EQ(patch.given, port.get());

  QCPatch plain;
  EXPECT_EQ(plain.addInputPort<TarnOpaqueDataPort>("inputData")->setupParameterView(), nullptr);

  std::shared_ptr<VRTOpaqueDataPort> orphan;
  {
    PatchWithEditor gone;
    orphan = gone.addInputPort<VRTOpaqueDataPort>("inputData");
  }
  EXPECT_EQ(orphan->setupParameterView(), nullptr);
  EXPECT_EQ(VRTOpaqueDataPort("inputData").setupParameterView(), nullptr);
}

TEST(Images, ShareTheirBitmap) {
  const std::shared_ptr<const VortoBitmap> bitmap(TCCreateBitmap(3, 2, 4));
  QCImagePort port("inputImage");
  EXPECT_EQ(VRTImage::bitmapOfPort(port), nullptr);
  VRTImage::setBitmapOfPort(port, bitmap);
  EXPECT_EQ(VRTImage::bitmapOfPort(port), bitmap);
  EXPECT_EQ(port.imageValue()->pixelsWide(), 3U);
  EXPECT_EQ(port.imageValue()->pixelsHigh(), 2U);
  EXPECT_EQ(port.imageValue()->_bufferPixelSize(), 8);
  EXPECT_EQ(port.value()->copyWithZone(), port.value());
  VRTImage::setBitmapOfPort(port, nullptr);
  EXPECT_EQ(port.imageValue(), nullptr);
}

TEST(Compatibility, NamesStandInTheClassTableUnderTheirSuperclasses) {
  const std::pair<const char*, const char*> kinship[] = {
      {"TarnEffectManager", "VRTNodeManager"},   {"TarnGradientPort", "VRTGradientPort"},
      {"TarnHistogramPort", "VRTHistogramPort"}, {"TarnOpaqueDataPort", "VRTOpaqueDataPort"},
      {"TarnGradient", "VRTGradient"},           {"TarnHistogram", "VRTHistogram"},
      {"TarnOpaqueData", "VRTOpaqueData"},
  };
  for (const auto& [name, superclass] : kinship) {
    const NSClass* entry = NSClassFromString(name);
    ASSERT_TRUE(entry) << name;
    EXPECT_EQ(entry->superclassName, superclass);
    const NSObjectRef object = entry->factory();
    ASSERT_TRUE(object) << name;
    EXPECT_EQ(object->className(), name);
    EXPECT_TRUE(object->isKindOfClass(superclass));
  }
}

}  // namespace
