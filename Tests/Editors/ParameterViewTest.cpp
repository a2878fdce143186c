// SPDX-License-Identifier: BSD-3-Clause
#include "Editors/VRTEditors.h"
#include "GradientEditor/VRTGradientEditor.h"
#include "HistogramEditor/VRTHistogramEditor.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Registry/BrivoCompatability.h"

#include <gtest/gtest.h>

#include <memory>

// What ports answer to setupParameterView().

namespace {

using View = std::unique_ptr<NSTarnView>;

template <class Port>
std::shared_ptr<Port> portWithValue(QCPatch& patch, const char* key, NSObjectRef value) {
  auto port = patch.addInputPort<Port>(key);
  EXPECT_TRUE(port->setValue(value));
  return port;
}

TEST(ParameterViews, ComeWithTheStart) {
  QCPatch patch;
  const auto port = portWithValue<VRTHistogramPort>(patch, "levels", std::make_shared<VRTHistogram>());
  VRTRegisterParameterViewFactory("VRTHistogramPort", nullptr);
  EXPECT_EQ(View(port->setupParameterView()), nullptr);
  VRTStartEditors();
  VRTStartEditors();
  EXPECT_NE(View(port->setupParameterView()), nullptr);
}

template <class Port>
class ParameterViewsOfPort : public testing::Test {};

template <class PortClass, class EditorClass, class ValueClass, int editorWidth>
struct Kind {
  using Port = PortClass;
  using Editor = EditorClass;
  using Value = ValueClass;
  static constexpr int width = editorWidth;
};
using Kinds = testing::Types<Kind<VRTGradientPort, VRTGradientEditor, VRTGradient, 236>,
                             Kind<TarnGradientPort, VRTGradientEditor, TarnGradient, 236>,
                             Kind<VRTHistogramPort, VRTHistogramEditor, VRTHistogram, 218>,
                             Kind<TarnHistogramPort, VRTHistogramEditor, TarnHistogram, 218>>;
struct KindNames {
  template <class Type>
  static std::string GetName(int) {
    return typename Type::Port("").className();
  }
};
TYPED_TEST_SUITE(ParameterViewsOfPort, Kinds, KindNames);

TYPED_TEST(ParameterViewsOfPort, TwoCallsGiveTwoEditors) {
  VRTStartEditors();
  QCPatch patch;
  const auto port =
      portWithValue<typename TypeParam::Port>(patch, "parameter", std::make_shared<typename TypeParam::Value>());
  const View first(port->setupParameterView());
  const View second(port->setupParameterView());
  ASSERT_NE(dynamic_cast<typename TypeParam::Editor*>(first.get()), nullptr);
  ASSERT_NE(dynamic_cast<typename TypeParam::Editor*>(second.get()), nullptr);
  EXPECT_NE(first, second);
  EXPECT_EQ(first->parent(), nullptr);
  EXPECT_EQ(first->frame().origin.x, 0);
  EXPECT_EQ(first->frame().size.width, TypeParam::width);

  const QImage before = second->grab().toImage();
  port->resetParameterView(first.get());
  port->resetParameterView(nullptr);
  EXPECT_EQ(second->grab().toImage(), before);
  port->setValue(nullptr);
  EXPECT_NE(first->grab().toImage(), before) << "both are bound to the port";
  EXPECT_NE(second->grab().toImage(), before);
}

TEST(ParameterViews, OfLevelsAre137High) {
  VRTStartEditors();
  QCPatch patch;
  const auto port = portWithValue<VRTHistogramPort>(patch, "levels", std::make_shared<VRTHistogram>());
  EXPECT_EQ(View(port->setupParameterView())->frame().size.height, 137);
}

class ViewingPatch : public QCPatch, public VRTOpaqueDataViewing {
 public:
  NSTarnView* viewForOpaqueDataPort(VRTOpaqueDataPort* port) override {
    askedBy = port;
    return new NSTarnView(NSMakeRect(0, 0, 10, 10));
  }
  VRTOpaqueDataPort* askedBy = nullptr;
};

TEST(ParameterViews, OfOpaqueDataComeFromTheNode) {
  VRTStartEditors();
  QCPatch silent;
  const auto unanswered = silent.addInputPort<VRTOpaqueDataPort>("data");
  EXPECT_EQ(unanswered->setupParameterView(), nullptr);
  VRTOpaqueDataPort alone("data");
  EXPECT_EQ(alone.setupParameterView(), nullptr);
  alone.resetParameterView(nullptr);

  ViewingPatch viewing;
  const auto port = viewing.addInputPort<TarnOpaqueDataPort>("data");
  EXPECT_NE(View(port->setupParameterView()), nullptr);
  EXPECT_EQ(viewing.askedBy, port.get());
}

}  // namespace
