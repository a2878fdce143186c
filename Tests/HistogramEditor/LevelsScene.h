// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSKeyValueObserving.h"
#include "Platform/Foundation/NSNotificationCenter.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Ports/VRTObjects.h"
#include "Ports/VRTPorts.h"
#include "Registry/VRTProtocols.h"

#include <QApplication>
#include <QMouseEvent>
#include <QTest>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// A patch with an image and levels, its host's execution context, and people who edit the levels.

class SceneImage : public QCImage {
 public:
  SceneImage(std::size_t pixelsWide, std::size_t pixelsHigh, int pixelSize, std::vector<std::uint8_t> pixels)
      : bytes(std::move(pixels)),
        width(pixelsWide),
        height(pixelsHigh),
        pitch(width * std::size_t(pixelSize)),
        pixelBytes(pixelSize) {}
  std::size_t pixelsWide() const override { return width; }
  std::size_t pixelsHigh() const override { return height; }
  int _bufferPixelSize() const override { return pixelBytes; }

  std::vector<std::uint8_t> bytes;
  std::size_t width, height, pitch;
  int pixelBytes;
  int format = 1;
};

// Bytes of one pixel, repeated.
inline std::shared_ptr<SceneImage> imageOf(std::vector<std::uint8_t> pixel, std::size_t width, std::size_t height) {
  std::vector<std::uint8_t> bytes;
  for (std::size_t i = 0; i < width * height; ++i) bytes.insert(bytes.end(), pixel.begin(), pixel.end());
  return std::make_shared<SceneImage>(width, height, int(pixel.size()), std::move(bytes));
}

class SceneContext : public VortoExecutionContext {
 public:
  std::size_t pixelsWideFromImage(const QCImage& image) override { return sceneImage(image).width; }
  std::size_t pixelsHighFromImage(const QCImage& image) override { return sceneImage(image).height; }
  int formatFromImage(const QCImage& image) override { return sceneImage(image).format; }
  void getPixelsFromImage(const QCImage& image, const void** outBaseAddress, std::size_t* outBytesPerRow) override {
    ++reads;
    const auto& bytes = sceneImage(image).bytes;
    *outBaseAddress = bytes.empty() ? nullptr : bytes.data();
    *outBytesPerRow = sceneImage(image).pitch;
  }
  int reads = 0;

 private:
  static const SceneImage& sceneImage(const QCImage& image) { return dynamic_cast<const SceneImage&>(image); }
};

class ScenePatch : public QCPatch, public VortoRuntime {
 public:
  explicit ScenePatch(const char* kind) : QCPatch(attributesOf(kind)) {}
  VortoExecutionContext* vortoExecutionContext() override { return context; }
  SceneContext* context = nullptr;

 private:
  static PropertyList attributesOf(const char* kind) {
    PropertyList::Dictionary roles, kinds, attributes;
    roles.set("inputImagePort", PropertyList::string("image"));
    kinds.set(kind, PropertyList::dictionary(roles));
    attributes.set("protocols", PropertyList::dictionary(kinds));
    return PropertyList::dictionary(attributes);
  }
};

struct Scene {
  explicit Scene(const char* kind = "filter") : patch(std::make_shared<ScenePatch>(kind)) {
    patch->context = &context;
    image = patch->addInputPort<QCImagePort>("image");
    levels = patch->addInputPort<VRTHistogramPort>("levels");
    levels->setValue(value);
  }
  VRTHistogram& histogram() { return dynamic_cast<VRTHistogram&>(*levels->value()); }

  SceneContext context;
  std::shared_ptr<ScenePatch> patch;
  std::shared_ptr<QCImagePort> image;
  std::shared_ptr<VRTHistogramPort> levels;
  std::shared_ptr<VRTHistogram> value = std::make_shared<VRTHistogram>();
};

// What a port's value and its interactions tell, in order.
class Listener : public NSKeyValueObserver {
 public:
  explicit Listener(VRTHistogramPort& port) : port_(&port) {
    port.addObserver(this, "value", 0, nullptr);
    auto& center = NSNotificationCenter::defaultCenter();
    for (const char* name : {"VortoStartInteraction", "VortoEndInteraction"}) {
      observations_.push_back(center.addObserver(name, nullptr, [this](const NSNotification& notification) {
        tell(notification.object == port_ ? notification.name.substr(5) : notification.name + " of another port");
      }));
    }
  }
  void observeValueForKeyPath(const std::string&, NSObject*, const PropertyList&, void*) override { tell("value"); }

  using Told = std::vector<std::string>;
  Told take() { return std::exchange(told_, {}); }
  std::function<void(const std::string&)> onTold;

 private:
  void tell(const std::string& what) {
    told_.push_back(what);
    if (onTold) onTold(what);
  }
  const void* port_;
  std::vector<NSNotificationCenter::Observation> observations_;
  Told told_;
};

inline const Listener::Told kStart{"StartInteraction"};
inline const Listener::Told kEnd{"EndInteraction"};
inline const Listener::Told kValue{"value"};

// The left button goes down, moves, and goes up, at points of the widget (upper left origin).
inline void sendMouse(QWidget& widget, QEvent::Type type, QPointF position) {
  const bool moves = type == QEvent::MouseMove;
  QMouseEvent event(type, position, widget.mapTo(widget.window(), position), widget.mapToGlobal(position),
                    moves ? Qt::NoButton : Qt::LeftButton,
                    type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&widget, &event);
}
inline void press(QWidget& widget, QPointF position) {
  sendMouse(widget, QEvent::MouseButtonPress, position);
}
inline void drag(QWidget& widget, QPointF position) {
  sendMouse(widget, QEvent::MouseMove, position);
}
inline void release(QWidget& widget, QPointF position) {
  sendMouse(widget, QEvent::MouseButtonRelease, position);
}
