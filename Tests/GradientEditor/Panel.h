// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Channels/VRTChannelGradient.h"
#include "Controls/VRTTransientColorPicker.h"
#include "GradientEditor/VRTGradientEditor.h"
#include "GradientEditor/VRTGradientGutterAlpha.h"
#include "GradientEditor/VRTGradientGutterRGB.h"
#include "Platform/Foundation/NSNotificationCenter.h"
#include "Ports/VRTObjects.h"

#include <gtest/gtest.h>

#include <QPointer>
#include <QTest>
#include <cmath>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// A gradient editor on a port, in a window, driven by events of the window system; what its port announces is logged:
// "start", "change" and "end".
class Panel : public NSKeyValueObserver {
 public:
  explicit Panel(int width = 236, bool alpha = false, std::vector<double> positions = {0, 0.25, 0.6, 1}) {
    port = std::make_shared<VRTGradientPort>("inputGradient");
    value = gradientAt(positions);
    port->setValue(value);
    window = std::make_unique<NSTarnView>(NSMakeRect(0, 0, width + 40, 160));
    editor = new VRTGradientEditor(NSMakeRect(0, 0, width, 76));
    editor->setGradientPort(port.get());
    editor->setEnabled(true);
    window->addSubview(*editor);
    editor->setFrame(NSMakeRect(11, 40, width, 75));
    gutter = dynamic_cast<VRTGradientGutter*>(part(alpha ? "gradientGutterAlpha" : "gradientGutterRGB"));
    window->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    port->addObserver(this, "value", 0, nullptr);
    for (const char* name : {"VortoStartInteraction", "VortoEndInteraction"}) {
      observations.push_back(NSNotificationCenter::defaultCenter().addObserver(
          name, port.get(),
          [this](const NSNotification& told) { note(told.name == "VortoStartInteraction" ? "start" : "end"); }));
    }
  }
  ~Panel() override {
    observations.clear();
    if (port) port->removeObserver(this, "value");
  }

  static std::shared_ptr<VRTGradient> gradientAt(const std::vector<double>& positions) {
    PropertyList colors = PropertyList::array(), opacities = PropertyList::array();
    const auto add = [](PropertyList& list, std::initializer_list<double> reals) {
      for (const double real : reals) list.append(PropertyList::real(real));
    };
    double shade = 0.1;
    for (const double position : positions) {
      add(colors, {position, 0.5});
      colors.append(PropertyList::integer(VRTGradientSmooth));
      add(colors, {shade, 0.5, 1 - shade});
      add(opacities, {position, 0.5});
      opacities.append(PropertyList::integer(VRTGradientSmooth));
      add(opacities, {1 - shade / 2});
      shade += 0.2;
    }
    PropertyList state;
    state.set("rgbSamples", colors);
    state.set("alphaSamples", opacities);
    auto gradient = VRTGradient::gradient();
    EXPECT_TRUE(gradient->initWithStateValue(state));
    return gradient;
  }

  void observeValueForKeyPath(const std::string&, NSObject*, const PropertyList&, void*) override { note("change"); }

  void note(const std::string& what) {
    log += log.empty() ? what : " " + what;
    if (onNote) onNote(what);
  }
  std::string takeLog() { return std::exchange(log, {}); }

  QWidget* part(const char* name) const { return window->findChild<QWidget*>(name); }

  VRTChannelGradientFolder& folder() const { return *gutter->getFolder(); }
  VRTChannelGradientSample* sample(std::size_t index) const {
    return dynamic_cast<VRTChannelGradientSample*>(folder().getDescendants().at(index));
  }
  std::vector<double> positions() const {
    std::vector<double> all;
    for (std::size_t i = 0; i < folder().getNumberOfDescendants(); ++i) all.push_back(sample(i)->position);
    return all;
  }
  VRTGradientGutterGeometry geometry() const { return VRTGradientGutterGeometry(gutter->bounds()); }
  double xOf(double position) const { return std::round(geometry().xOfPosition(position)); }
  // Whether events come at whole points, not at device pixels between them.
  bool wholePoints() const { return window->devicePixelRatioF() == 1; }
  double span() const { return geometry().trackSpan(); }

  // The mouse, at points of the gutter. Rows are those of whole points, so that (x, y) hits what covers y to y + 1.
  QPoint onWindow(NSPoint point) const {
    const double row = gutter->isFlipped() ? point.y : gutter->height() - 1 - point.y;
    return gutter->mapTo(window.get(), QPointF(point.x, row)).toPoint();
  }
  void press(NSPoint point, Qt::KeyboardModifiers modifiers = {}, Qt::MouseButton button = Qt::LeftButton) {
    place = onWindow(point);
    QTest::mousePress(window->windowHandle(), button, modifiers, place);
  }
  void move(NSPoint point) {
    place = onWindow(point);
    QTest::mouseMove(window->windowHandle(), place);
  }
  void release(Qt::KeyboardModifiers modifiers = {}, Qt::MouseButton button = Qt::LeftButton) {
    QTest::mouseRelease(window->windowHandle(), button, modifiers, place);
  }
  void doubleClick(NSPoint point) { QTest::mouseDClick(window->windowHandle(), Qt::LeftButton, {}, onWindow(point)); }
  void clickSample(std::size_t index) {
    press({xOf(sample(index)->position), 5});
    release();
  }
  void key(int code, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(window->windowHandle(), static_cast<Qt::Key>(code), modifiers);
  }

  std::shared_ptr<VRTGradientPort> port;
  std::shared_ptr<VRTGradient> value;
  std::unique_ptr<NSTarnView> window;
  QPointer<VRTGradientEditor> editor;
  QPointer<VRTGradientGutter> gutter;
  QPoint place;  // of the pointer, in the window
  std::string log;
  std::function<void(const std::string&)> onNote;
  std::vector<NSNotificationCenter::Observation> observations;
};
