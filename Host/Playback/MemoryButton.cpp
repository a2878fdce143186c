// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Playback/MemoryButton.h"

#include "Host/Inspect/WindowText.h"
#include "Host/Playback/Player.h"

#include <QActionGroup>
#include <QLocale>
#include <QMenu>
#include <QPolygonF>
#include <QStyleOptionToolButton>
#include <QStylePainter>
#include <cmath>

namespace host {
namespace {

constexpr int kChevronPlace = 10;  // points for the arrow
constexpr double kGigabyte = 1024.0 * 1024 * 1024;

// To a tenth, without one that is 0.
QString gigabytes(std::uint64_t bytes) {
  const double tenths = std::round(static_cast<double>(bytes) / kGigabyte * 10);
  return QLocale().toString(tenths / 10, 'f', std::fmod(tenths, 10) == 0 ? 0 : 1);
}

}  // namespace

QString memoryText(std::uint64_t bytes, std::uint64_t budget) {
  return windowText("%1 of %2 GB").arg(gigabytes(bytes), gigabytes(budget));
}

MemoryButton::MemoryButton(Player& player, const QList<QAction*>& more, QWidget* parent)
    : QToolButton(parent), player_(player) {
  setAutoRaise(true);
  setFocusPolicy(Qt::TabFocus);
  setToolButtonStyle(Qt::ToolButtonTextOnly);
  setPopupMode(QToolButton::InstantPopup);
  setToolTip(windowText("Memory for frames"));
  auto* menu = new QMenu(this);
  setMenu(menu);
  menu->addSection(windowText("Memory for frames"));
  const std::uint64_t usual = FrameCache::defaultBudget();
  addBudget(windowText("A quarter of all (%1 GB)").arg(gigabytes(usual)), usual);
  constexpr std::uint64_t gigabyte = 1ull << 30;
  for (std::uint64_t size = 1; size <= 256 && size * gigabyte < usual * 4; size *= 2) {
    addBudget(windowText("%1 GB").arg(size), size * gigabyte);
  }
  menu->addSeparator();
  menu->addActions(more);
  player_.listen(*this, {.cacheChanged = [this] { follow(); }});
  follow();
}

void MemoryButton::addBudget(const QString& text, std::uint64_t bytes) {
  QAction* action = menu()->addAction(text);
  action->setCheckable(true);
  action->setData(QVariant::fromValue<qulonglong>(bytes));
  QObject::connect(action, &QAction::triggered, this, [this, bytes] {
    player_.setBudget(bytes);
    follow();
  });
}

void MemoryButton::follow() {
  const FrameCache& cache = player_.cache();
  setText(memoryText(cache.bytes(), cache.budget()));
  setAccessibleName(windowText("Memory for frames") + ": " + text());
  for (QAction* action : menu()->actions()) {
    if (action->data().isValid()) action->setChecked(action->data().toULongLong() == cache.budget());
  }
}

QSize MemoryButton::sizeHint() const {
  return QToolButton::sizeHint() + QSize(kChevronPlace, 0);
}

// With an arrow beside the text, in the place of the style's below it.
void MemoryButton::paintEvent(QPaintEvent*) {
  QStylePainter painter(this);
  QStyleOptionToolButton option;
  initStyleOption(&option);
  option.features &= ~QStyleOptionToolButton::HasMenu;
  option.text.clear();
  painter.drawComplexControl(QStyle::CC_ToolButton, option);
  const QColor ink = palette().color(QPalette::WindowText);
  painter.setPen(ink);
  painter.drawText(rect().adjusted(0, 0, -kChevronPlace, 0), Qt::AlignCenter, text());
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(ink, 1.3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  const QPointF tip(width() - kChevronPlace, height() / 2.0 + 2);
  painter.drawPolyline(QPolygonF({tip + QPointF(-3, -3), tip, tip + QPointF(3, -3)}));
}

}  // namespace host
