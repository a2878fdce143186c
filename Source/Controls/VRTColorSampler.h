// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/TarnKit/NSColor.h"

#include <QImage>
#include <QObject>
#include <QPointer>
#include <functional>
#include <optional>

class QWidget;

// The eyedropper: takes the color of a device pixel anywhere on the screen, or in the windows of this program where the
// window system shows no others. A magnifying glass follows the pointer. A click takes the color; Escape and the right
// button give up.
//
// It runs from its making until it has called `done`, or is destroyed; until then nobody else gets mouse or keys.
class VRTColorSampler : public QObject {
 public:
  // Once, with the color or without. May destroy the sampler.
  using Done = std::function<void(const std::optional<NSColor>&)>;

  VRTColorSampler(QWidget& owner, Done done);
  ~VRTColorSampler() override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  class Glass;
  void look(QPointF globalPosition);
  void finish(const std::optional<NSColor>& color);

  QPointer<Glass> glass_;  // the owner's too
  Done done_;
};

// The device pixels around a point of the screen, an odd number each way, that of the point in the middle. Black beyond
// the edges; null when nothing can be seen there.
QImage VRTPixelsOfScreen(QPointF globalPosition, int across);
