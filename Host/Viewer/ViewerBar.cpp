// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/ViewerBar.h"

#include "Host/Inspect/Appearance.h"
#include "Host/Inspect/WindowText.h"
#include "Host/Viewer/BarControls.h"
#include "Host/Viewer/Viewer.h"
#include "Host/Viewer/ViewerActions.h"

#include <QAction>
#include <QColorDialog>
#include <QHBoxLayout>
#include <QMenu>
#include <QPainter>
#include <cmath>
#include <utility>

namespace host {
namespace {

constexpr int kHeight = 34;
constexpr double kZooms[] = {1.0 / 8, 1.0 / 4, 1.0 / 2, 1, 2, 4, 8, 16, 32, 64};

QString percentText(double zoom) {
  const double percent = zoom * 100;
  return windowText("%1 %").arg(percent, 0, 'f', percent < 20 && percent != std::round(percent) ? 1 : 0);
}

QColor mixed(const QColor& a, const QColor& b, float part) {
  return QColor::fromRgbF(a.redF() + (b.redF() - a.redF()) * part, a.greenF() + (b.greenF() - a.greenF()) * part,
                          a.blueF() + (b.blueF() - a.blueF()) * part);
}

void addGap(QHBoxLayout& row) {
  row.addSpacing(10);
}

QAction* addToMenu(QMenu& menu, const QString& text, bool isChosen, const std::function<void()>& done) {
  QAction* action = menu.addAction(text);
  action->setCheckable(true);
  action->setChecked(isChosen);
  QObject::connect(action, &QAction::triggered, &menu, done);
  return action;
}

// A frame that is filled where the result is seen.
void drawCompare(QPainter& painter, const QRectF& square, const QColor& ink, double from) {
  const QRectF frame = square.adjusted(1.5, 2.5, -1.5, -2.5);
  QRectF filled = frame;
  filled.setLeft(frame.left() + from * frame.width());
  painter.setPen(Qt::NoPen);
  painter.setBrush(ink);
  if (from < 1) painter.drawRect(filled);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(ink, 1.3));
  painter.drawRoundedRect(frame, 1.5, 1.5);
}

void drawGround(QPainter& painter, const QRectF& square, const QColor& ink, const ViewSettings& settings,
                const InspectorColors& colors) {
  const QRectF frame = square.adjusted(1.5, 1.5, -1.5, -1.5);
  switch (settings.ground) {
    case Ground::Checkerboard: {
      painter.fillRect(frame, colors.checkerLight);
      const QSizeF half = frame.size() / 2;
      painter.fillRect(QRectF(frame.topLeft(), half), colors.checkerDark);
      painter.fillRect(QRectF(frame.center(), half), colors.checkerDark);
      break;
    }
    case Ground::Black:
      painter.fillRect(frame, Qt::black);
      break;
    case Ground::Gray:
      painter.fillRect(frame, QColor(119, 119, 119));
      break;
    case Ground::White:
      painter.fillRect(frame, Qt::white);
      break;
    case Ground::Color:
      painter.fillRect(frame, QColor::fromRgb(settings.groundColor));
  }
  QColor line = ink;
  line.setAlphaF(0.55f);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(line);
  painter.drawRoundedRect(frame, 1.5, 1.5);
}

}  // namespace

ViewerBar::ViewerBar(Viewer& viewer, QWidget* parent) : QWidget(parent), viewer_(viewer) {
  setFixedHeight(kHeight);
  setAccessibleName(windowText("View"));
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(8, 0, 8, 1);
  row->setSpacing(1);
  addZoom(*row);
  addGap(*row);
  addCompare(*row);
  addGap(*row);
  addChannels(*row);
  addGap(*row);
  addNumbers(*row);
  row->addStretch(1);
  addDisplay(*row);
  addGround(*row);
  viewer.whenChanged(this, [this] { update(); });
  update();
}

void ViewerBar::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), palette().color(QPalette::Window));
  painter.fillRect(QRect(0, height() - 1, width(), 1), inspectorColors(palette()).separator);
}

void ViewerBar::change(const std::function<void(ViewSettings&)>& change) {
  ViewSettings settings = viewer_.settings();
  change(settings);
  viewer_.setSettings(settings);
}

BarButton* ViewerBar::addSegment(QHBoxLayout& row, const char* name, const std::function<void(ViewSettings&)>& change,
                                 const std::function<bool(const ViewSettings&)>& isChosen) {
  auto* button = new BarButton(windowText(name), this);
  button->setCheckable(true);
  QObject::connect(button, &QAbstractButton::clicked, this, [this, change] {
    this->change(change);
    update();  // a second click unchecks it, whatever the settings say
  });
  segments_.push_back({button, isChosen});
  row.addWidget(button);
  return button;
}

void ViewerBar::addZoom(QHBoxLayout& row) {
  zoom_ = new BarButton(windowText("Zoom"), this);
  auto* menu = new QMenu(zoom_);
  QObject::connect(menu, &QMenu::aboutToShow, this, [this, menu] {
    menu->clear();
    const ViewSettings& settings = viewer_.settings();
    for (const auto& [mode, text] : {std::pair(ZoomMode::Fit, "Fit"), std::pair(ZoomMode::Fill, "Fill")}) {
      const ZoomMode chosen = mode;
      addToMenu(*menu, windowText(text), settings.zoomMode == mode,
                [this, chosen] { change([chosen](ViewSettings& changed) { changed.zoomMode = chosen; }); });
    }
    menu->addSeparator();
    for (const double zoom : kZooms) {
      addToMenu(*menu, percentText(zoom), settings.zoomMode == ZoomMode::Factor && settings.zoom == zoom,
                [this, zoom] { viewer_.zoomTo(zoom); });
    }
    menu->addSeparator();
    addToMenu(*menu, windowText("Pixel Grid"), settings.pixelGrid,
              [this] { change([](ViewSettings& changed) { changed.pixelGrid = !changed.pixelGrid; }); });
  });
  zoom_->setMenu(menu);
  zoom_->setMinimumWidth(84);
  row.addWidget(zoom_);
}

void ViewerBar::addCompare(QHBoxLayout& row) {
  struct Mode {
    const char* name;
    CompareMode compare;
    double from;  // of the drawing
  };
  for (const Mode& mode : {Mode{"Result", CompareMode::Result, 0}, Mode{"Split", CompareMode::Split, 0.5},
                           Mode{"Before", CompareMode::Before, 1}}) {
    const CompareMode compare = mode.compare;
    const double from = mode.from;
    addSegment(
        row, mode.name, [compare](ViewSettings& settings) { settings.compare = compare; },
        [compare](const ViewSettings& settings) { return settings.compare == compare; })
        ->setDrawing([from](QPainter& painter, const QRectF& square, const QColor& ink) {
          drawCompare(painter, square, ink, from);
        });
  }
}

void ViewerBar::addChannels(QHBoxLayout& row) {
  struct Channel {
    const char* name;
    const char* letter;
    ChannelView channels;
    QColor color;
  };
  for (const Channel& channel :
       {Channel{"Color", "RGB", ChannelView::Color, {}}, Channel{"Red", "R", ChannelView::Red, QColor(224, 60, 60)},
        Channel{"Green", "G", ChannelView::Green, QColor(40, 165, 70)},
        Channel{"Blue", "B", ChannelView::Blue, QColor(70, 120, 235)}, Channel{"Alpha", "A", ChannelView::Alpha, {}},
        Channel{"Luminance", "L", ChannelView::Luminance, {}}}) {
    const ChannelView view = channel.channels;
    BarButton* button = addSegment(
        row, channel.name, [view](ViewSettings& settings) { settings.channels = view; },
        [view](const ViewSettings& settings) { return settings.channels == view; });
    button->setText(QString::fromLatin1(channel.letter));
    if (channel.color.isValid()) {
      const bool isDark = palette().color(QPalette::Window).lightness() < 128;
      button->setTextColor(mixed(channel.color, isDark ? QColor(Qt::white) : QColor(Qt::black), isDark ? 0.3f : 0.15f));
    }
  }
}

void ViewerBar::addNumbers(QHBoxLayout& row) {
  constexpr double most = ViewSettings::kMostExposure;
  exposure_ = new BarNumber(
      windowText("EV"), windowText("Exposure"), {-most, most, 0, 0.5, 2, true},
      [this](double value) { change([value](ViewSettings& settings) { settings.exposure = value; }); }, this);
  gamma_ = new BarNumber(
      QStringLiteral("\u03b3"), windowText("Gamma"),
      {ViewSettings::kLeastGamma, ViewSettings::kMostGamma, 1, 0.1, 2, false},
      [this](double value) { change([value](ViewSettings& settings) { settings.gamma = value; }); }, this);
  reset_ = new BarButton(windowText("Reset Exposure and Gamma"), this);
  reset_->setText(QStringLiteral("\u00d7"));
  QObject::connect(reset_, &QAbstractButton::clicked, this, [this] {
    change([](ViewSettings& settings) {
      settings.exposure = 0;
      settings.gamma = 1;
    });
  });
  QSizePolicy keeps = reset_->sizePolicy();
  keeps.setRetainSizeWhenHidden(true);
  reset_->setSizePolicy(keeps);
  row.addWidget(exposure_);
  row.addWidget(gamma_);
  row.addWidget(reset_);
}

void ViewerBar::addDisplay(QHBoxLayout& row) {
  display_ = new BarButton(windowText("Display transform"), this);
  display_->setWidest(280);
  auto* menu = new QMenu(display_);
  QObject::connect(menu, &QMenu::aboutToShow, this, [this, menu] {
    menu->clear();
    const DisplayChoice chosen = viewer_.settings().display;
    const auto add = [&](QMenu& to, const QString& text, const DisplayChoice& choice) {
      addToMenu(to, text, chosen == choice,
                [this, choice] { change([&](ViewSettings& settings) { settings.display = choice; }); });
    };
    add(*menu, QStringLiteral("sRGB"), {});
    add(*menu, windowText("Values as They Are"), {DisplayChoice::Kind::Off, {}, {}});
    QMenu* displayMenu = nullptr;
    std::string display;
    for (const DisplayView& view : viewer_.views()) {
      if (!displayMenu) menu->addSeparator();
      if (!displayMenu || view.display != display) displayMenu = menu->addMenu(QString::fromStdString(view.display));
      display = view.display;
      add(*displayMenu, QString::fromStdString(view.view), {DisplayChoice::Kind::View, view.display, view.view});
    }
  });
  display_->setMenu(menu);
  row.addWidget(display_);
}

void ViewerBar::addGround(QHBoxLayout& row) {
  ground_ = new BarButton(windowText("Behind transparency"), this);
  ground_->setDrawing([this](QPainter& painter, const QRectF& square, const QColor& ink) {
    drawGround(painter, square, ink, viewer_.settings(), inspectorColors(palette()));
  });
  auto* menu = new QMenu(ground_);
  QObject::connect(menu, &QMenu::aboutToShow, this, [this, menu] {
    menu->clear();
    for (const auto& [ground, text] :
         {std::pair(Ground::Checkerboard, "Checkerboard"), std::pair(Ground::Black, "Black"),
          std::pair(Ground::Gray, "Gray"), std::pair(Ground::White, "White"), std::pair(Ground::Color, "Own Color")}) {
      const Ground chosen = ground;
      addToMenu(*menu, windowText(text), viewer_.settings().ground == ground,
                [this, chosen] { change([chosen](ViewSettings& settings) { settings.ground = chosen; }); });
    }
    menu->addSeparator();
    QAction* choose = menu->addAction(windowText("Choose Color\u2026"));
    QObject::connect(choose, &QAction::triggered, this, [this] {
      const QColor color = QColorDialog::getColor(QColor::fromRgb(viewer_.settings().groundColor), this,
                                                  windowText("Behind transparency"));
      if (!color.isValid()) return;
      change([&](ViewSettings& settings) {
        settings.ground = Ground::Color;
        settings.groundColor = color.rgb() & 0xFFFFFF;
      });
    });
  });
  ground_->setMenu(menu);
  row.addWidget(ground_);
}

void ViewerBar::update() {
  const ViewSettings& settings = viewer_.settings();
  for (const Segment& segment : segments_) segment.button->setChecked(segment.isChosen(settings));
  const QString percent = viewer_.picture() ? percentText(viewer_.zoom()) : QStringLiteral("\u2013");
  zoom_->setText(settings.zoomMode == ZoomMode::Fit    ? windowText("Fit") + QStringLiteral("  ") + percent
                 : settings.zoomMode == ZoomMode::Fill ? windowText("Fill") + QStringLiteral("  ") + percent
                                                       : percent);
  exposure_->setValue(settings.exposure);
  gamma_->setValue(settings.gamma);
  reset_->setVisible(settings.exposure != 0 || settings.gamma != 1);
  const QString shownAs = viewer_.shownAs();
  if (display_->text() != shownAs) {
    display_->setText(shownAs);
    display_->updateGeometry();
  }
  const QString reason = viewer_.shownAsReason();
  display_->setToolTip(windowText("Shown: %1").arg(shownAs) + (reason.isEmpty() ? QString() : '\n' + reason));
  display_->setAccessibleDescription(display_->toolTip());
  ground_->update();
}

}  // namespace host
