// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSAnimationEffect.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPainter>
#include <QTimer>
#include <QWidget>
#include <algorithm>
#include <cmath>

namespace {

constexpr int kDurationMilliseconds = 320;
constexpr int kFrameMilliseconds = 16;
constexpr double kOwnSize = 40;
constexpr int kCloudCount = 7;

// A ring of small clouds that swells and fades around a clear middle.
class Puff : public QWidget {
 public:
  Puff(QPoint centre, QSize size)
      : QWidget(nullptr, Qt::ToolTip | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint |
                             Qt::WindowTransparentForInput | Qt::WindowDoesNotAcceptFocus) {
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_QuitOnClose, false);
    setGeometry(QRect(centre - QPoint(size.width() / 2, size.height() / 2), size));
    connect(qApp, &QCoreApplication::aboutToQuit, this, &QObject::deleteLater);
    connect(&frames_, &QTimer::timeout, this, [this] { step(); });
    frames_.start(kFrameMilliseconds);
    clock_.start();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const double time = progress();
    const double half = std::min(width(), height()) / 2.0;
    const double swelling = 1 - (1 - time) * (1 - time);
    for (int cloud = 0; cloud < kCloudCount; ++cloud) drawCloud(painter, cloud, half, swelling, 1 - time);
  }

 private:
  double progress() const { return std::min(1.0, double(clock_.elapsed()) / kDurationMilliseconds); }

  void drawCloud(QPainter& painter, int cloud, double half, double swelling, double opacity) const {
    const double angle = cloud * 2 * M_PI / kCloudCount;
    const double distance = half * (0.2 + 0.45 * swelling);
    const double radius = half * (cloud % 2 ? 0.22 : 0.3) * (0.7 + 0.3 * swelling);
    const QPointF centre(width() / 2.0 + distance * std::cos(angle), height() / 2.0 + distance * std::sin(angle));
    painter.setBrush(QColor(120, 124, 134, int(90 * opacity)));
    painter.drawEllipse(centre + QPointF(0, 1), radius + 0.5, radius + 0.5);
    painter.setBrush(QColor(246, 247, 250, int(210 * opacity)));
    painter.drawEllipse(centre, radius, radius);
  }

  void step() {
    if (clock_.elapsed() >= kDurationMilliseconds) {
      frames_.stop();
      close();
    } else {
      update();
    }
  }

  QElapsedTimer clock_;
  QTimer frames_;
};

}  // namespace

void NSShowAnimationEffect(int, QPoint globalCentre, NSSize size) {
  if (!qobject_cast<QApplication*>(QCoreApplication::instance()) || QCoreApplication::closingDown()) return;
  const double width = size.width > 0 ? size.width : kOwnSize;
  const double height = size.height > 0 ? size.height : kOwnSize;
  (new Puff(globalCentre, QSize(int(std::ceil(width)), int(std::ceil(height)))))->show();
}
