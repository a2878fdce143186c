// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Channels/VRTChannelGradient.h"
#include "Controls/VRTTransientColorPicker.h"
#include "GradientEditor/VRTGradientEditor.h"
#include "GradientEditor/VRTGradientGutterAlpha.h"
#include "GradientEditor/VRTGradientGutterRGB.h"
#include "Ports/VRTObjects.h"
#include "Tests/Support/EditorScene.h"
#include "Tests/Support/Lists.h"

// A gradient editor, and its color or its opacity gutter.
class GradientScene : public EditorScene {
 public:
  explicit GradientScene(bool alpha = false, int width = 236, const std::vector<double>& positions = {0, 0.25, 0.6, 1})
      : value(gradientAt(positions)), port(std::make_shared<VRTGradientPort>("inputGradient")) {
    port->setValue(value);
    auto* made = new VRTGradientEditor(NSMakeRect(0, 0, width, 76));
    made->setGradientPort(port.get());
    made->setEnabled(true);
    show(made, NSMakeRect(11, 40, width, 75), port);
    gutter = alpha ? part<VRTGradientGutterAlpha>() : static_cast<NSTarnView*>(part<VRTGradientGutterRGB>());
  }
  ~GradientScene() override {
    if (auto* picker = VRTTransientColorPicker::current()) picker->cancel();
  }

  static std::shared_ptr<VRTGradient> gradientAt(const std::vector<double>& positions) {
    PropertyList colors = PropertyList::array(), opacities = PropertyList::array();
    double shade = 0.1;
    for (const double position : positions) {
      for (PropertyList* samples : {&colors, &opacities}) {
        for (const double real : {position, 0.5}) samples->append(PropertyList::real(real));
        samples->append(PropertyList::integer(VRTGradientSmooth));
      }
      for (const double real : {shade, 0.5, 1 - shade}) colors.append(PropertyList::real(real));
      opacities.append(PropertyList::real(1 - shade / 2));
      shade += 0.2;
    }
    auto gradient = VRTGradient::gradient();
    EXPECT_TRUE(gradient->initWithStateValue(dict({{"rgbSamples", colors}, {"alphaSamples", opacities}})));
    return gradient;
  }

  void attach(EditorScene* other) override {
    editorPart().setGradientPort(other ? dynamic_cast<GradientScene&>(*other).port.get() : nullptr);
  }
  std::shared_ptr<NSObject> newValue() const override { return gradientAt({0.1, 0.5, 0.5}); }
  NSPoint handle() const override { return {xOf(sample(count() - 3)->position), 5}; }
  NSPoint nothing() const override { return {xOf(0.8), 5}; }
  double position() const override { return sample(1)->position; }
  void chooseHandle() override { select(1); }
  bool settles() const override { return true; }
  void updateEditor() override { editorPart().update(); }

  VRTGradientEditor& editorPart() const { return dynamic_cast<VRTGradientEditor&>(*editor); }
  VRTGradientGutter& gutterPart() const { return dynamic_cast<VRTGradientGutter&>(*gutter); }
  VRTChannelGradientFolder& folder() const { return *gutterPart().getFolder(); }
  std::size_t count() const { return folder().getNumberOfDescendants(); }
  VRTChannelGradientSample* sample(std::size_t index) const {
    return dynamic_cast<VRTChannelGradientSample*>(folder().getDescendants().at(index));
  }
  VRTChannelGradientSample* selected() const { return editorPart().getSelectedSample(); }
  void select(std::size_t index, bool middle = false) const {
    editorPart().setSelectedSample(sample(index), middle, false);
  }
  std::vector<double> positions() const {
    std::vector<double> all;
    for (std::size_t i = 0; i < count(); ++i) all.push_back(sample(i)->position);
    return all;
  }
  VRTGradientGutterGeometry geometry() const { return VRTGradientGutterGeometry(gutter->bounds()); }
  double span() const { return geometry().trackSpan(); }
  double xOf(double position) const { return std::round(geometry().xOfPosition(position)); }
  double middleX(std::size_t index) const {
    const auto* left = sample(index);
    return xOf(VRTGradientGutterGeometry::positionOfMiddle(left->position, sample(index + 1)->position, left->middle));
  }
  // Whether events come at whole points, not at device pixels between them.
  bool wholePoints() const { return window->devicePixelRatioF() == 1; }
  void click(NSPoint point, Qt::KeyboardModifiers modifiers = {}, Qt::MouseButton button = Qt::LeftButton) {
    press(point, modifiers, button);
    release(modifiers, button);
  }
  // Moves the pointer in the picker that is open.
  static void hoverPicker(QPoint place) {
    QWidget* swatch = VRTTransientColorPicker::panel();
    if (!swatch) return;
    QMouseEvent move(QEvent::MouseMove, place, swatch->mapToGlobal(place), Qt::NoButton, Qt::NoButton, {});
    QApplication::sendEvent(swatch, &move);
  }
  void clickSample(std::size_t index) { click({xOf(sample(index)->position), 5}); }

  using EditorScene::count;
  std::shared_ptr<VRTGradient> value;
  std::shared_ptr<VRTGradientPort> port;
};
