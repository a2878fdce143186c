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

template <class Port, class Value>
std::shared_ptr<Port> portOf(QCPatch& patch) {
  auto port = patch.addInputPort<Port>("parameter");
  EXPECT_TRUE(port->setValue(std::make_shared<Value>()));
  return port;
}

TEST(ParameterViews, ComeWithTheStart) {
  QCPatch patch;
  const auto port = portOf<VRTHistogramPort, VRTHistogram>(patch);
  VRTRegisterParameterViewFactory("VRTHistogramPort", nullptr);
  EXPECT_EQ(View(port->setupParameterView()), nullptr);
  VRTStartEditors();
  VRTStartEditors();
  EXPECT_NE(View(port->setupParameterView()), nullptr);

  VRTOpaqueDataPort alone("data");  // whose views come from its node
  EXPECT_EQ(alone.setupParameterView(), nullptr);
  alone.resetParameterView(nullptr);
}

TEST(ParameterViews, TwoCallsGiveTwoEditors) {
  VRTStartEditors();
  QCPatch gradients, oldGradients, levels, oldLevels;
  const struct {
    std::shared_ptr<QCPort> port;
    bool ofGradient;
    NSSize size;
  } cases[] = {{portOf<VRTGradientPort, VRTGradient>(gradients), true, {236, 75}},
               {portOf<TarnGradientPort, TarnGradient>(oldGradients), true, {236, 75}},
               {portOf<VRTHistogramPort, VRTHistogram>(levels), false, {218, 137}},
               {portOf<TarnHistogramPort, TarnHistogram>(oldLevels), false, {218, 137}}};
  for (const auto& each : cases) {
    SCOPED_TRACE(each.port->className());
    auto& viewing = dynamic_cast<ParameterView&>(*each.port);
    const View first(viewing.setupParameterView());
    const View second(viewing.setupParameterView());
    EXPECT_NE(first, second);
    for (const View* view : {&first, &second}) {
      EXPECT_EQ(dynamic_cast<VRTGradientEditor*>(view->get()) != nullptr, each.ofGradient);
      EXPECT_EQ(dynamic_cast<VRTHistogramEditor*>(view->get()) != nullptr, !each.ofGradient);
      EXPECT_EQ((*view)->parent(), nullptr);
      EXPECT_EQ((*view)->frame().origin.x, 0);
      EXPECT_TRUE(NSEqualSizes((*view)->frame().size, each.size));
      EXPECT_EQ((*view)->sizeHint(), QSize(int(each.size.width), int(each.size.height)));
    }
    const auto* gutter = first->findChild<QWidget*>(each.ofGradient ? "gradientGutterRGB" : "gutterIn");
    ASSERT_NE(gutter, nullptr);
    EXPECT_EQ(gutter->focusPolicy(), Qt::StrongFocus) << "enabled";
    const auto* tips = dynamic_cast<const NSTarnView*>(gutter);
    EXPECT_NE(tips->toolTipAtPoint({100, each.ofGradient ? 20.0 : 4.0}), "") << "help, from the first moment";

    const QImage before = second->grab().toImage();
    viewing.resetParameterView(first.get());
    viewing.resetParameterView(nullptr);
    EXPECT_EQ(second->grab().toImage(), before);
    each.port->setValue(nullptr);
    EXPECT_NE(first->grab().toImage(), before) << "both are bound to the port";
    EXPECT_NE(second->grab().toImage(), before);
  }
}

}  // namespace
