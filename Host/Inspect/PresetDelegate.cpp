// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/PresetDelegate.h"

#include "Host/Inspect/Appearance.h"
#include "Host/Inspect/PresetModel.h"
#include "Host/Inspect/PresetPictures.h"
#include "Host/Inspect/WindowText.h"

#include <QAbstractItemView>
#include <QLineEdit>
#include <QPainter>
#include <QPainterPath>
#include <QScrollBar>
#include <algorithm>
#include <cmath>
#include <numbers>

namespace host {
namespace {

// Points.
constexpr int kNarrowestCell = 100;
constexpr int kGradientHeight = 24;
constexpr int kLevelsHeight = 52;
constexpr int kNameHeight = 19;
constexpr int kHeadingHeight = 24;
constexpr int kGap = 3;  // around what a cell shows
constexpr int kStarSize = 17;
constexpr double kRounding = 3;
constexpr int kMostPictures = 2000;

QRect contentsOf(const QRect& cell) {
  return cell.adjusted(kGap, kGap, -kGap, -kGap);
}

QRect nameRect(const QRect& cell) {
  QRect place = contentsOf(cell);
  place.setTop(place.bottom() + 1 - kNameHeight);
  return place;
}

QRect pictureRect(const QRect& cell) {
  return contentsOf(cell).adjusted(0, 0, 0, -kNameHeight);
}

QPainterPath star(QPointF center, double radius) {
  QPolygonF points;
  for (int i = 0; i < 10; ++i) {
    const double angle = std::numbers::pi * (i / 5.0 - 0.5);
    const double reach = i % 2 == 0 ? radius : radius * 0.46;
    points.append(center + QPointF(reach * std::cos(angle), reach * std::sin(angle)));
  }
  QPainterPath path;
  path.addPolygon(points);
  path.closeSubpath();
  return path;
}

QFont smallFont(QFont font) {
  font.setPointSizeF(std::max(6.0, font.pointSizeF() * 0.88));
  return font;
}

QColor faded(QColor color, float alpha) {
  color.setAlphaF(alpha);
  return color;
}

}  // namespace

PresetDelegate::PresetDelegate(StateKind kind, QAbstractItemView& view)
    : QStyledItemDelegate(&view), kind_(kind), view_(view), pictures_(kMostPictures) {}

QRect PresetDelegate::starRect(const QRect& cell) {
  const QRect name = nameRect(cell);
  return {name.right() + 1 - kStarSize, name.top() + (name.height() - kStarSize) / 2, kStarSize, kStarSize};
}

// As the view counts it, which keeps the place of a scroll bar of the style's width free.
int PresetDelegate::contentWidth() const {
  const int bar = view_.style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, view_.verticalScrollBar());
  return view_.maximumViewportSize().width() - bar - 1;
}

QSize PresetDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const {
  const int width = contentWidth();
  if (index.data(PresetModel::kHeadingRole).toBool()) return {std::max(1, width), kHeadingHeight};
  const int columns = std::max(1, width / kNarrowestCell);
  const int height = (kind_ == StateKind::Levels ? kLevelsHeight : kGradientHeight) + kNameHeight + 2 * kGap;
  return {std::max(1, width / columns), height};
}

const QPixmap& PresetDelegate::picture(const QModelIndex& index, QSize points) const {
  const double ratio = view_.devicePixelRatioF();
  const QSize pixels = (QSizeF(points) * ratio).toSize();
  const QString key = QStringLiteral("%1 %2x%3 %4")
                          .arg(index.data(PresetModel::kPictureRole).toULongLong())
                          .arg(pixels.width())
                          .arg(pixels.height())
                          .arg(view_.palette().color(QPalette::Window).rgb());
  if (const QPixmap* known = pictures_.object(key)) return *known;
  const PropertyList* const state = static_cast<const PresetModel*>(index.model())->state(index);
  auto* drawn = new QPixmap(
      QPixmap::fromImage(pictureOfState(kind_, state ? *state : PropertyList(), pixels, ratio, view_.palette())));
  drawn->setDevicePixelRatio(ratio);
  ++drawn_;
  pictures_.insert(key, drawn);
  return *drawn;
}

void PresetDelegate::paintPicture(QPainter& painter, const QRect& place, const QStyleOptionViewItem& option,
                                  const QModelIndex& index) const {
  const bool isSelected = option.state & QStyle::State_Selected, isFocused = view_.hasFocus();
  const QRectF edge = QRectF(place).adjusted(0.5, 0.5, -0.5, -0.5);
  QPainterPath shape;
  shape.addRoundedRect(place, kRounding, kRounding);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QBrush(picture(index, place.size())));
  painter.setBrushOrigin(place.topLeft());
  painter.drawPath(shape);
  painter.setBrush(Qt::NoBrush);
  if (isSelected) {
    const QColor highlight = option.palette.color(QPalette::Highlight);
    painter.setPen(QPen(isFocused ? highlight : faded(highlight, 0.6f), 2));
    painter.drawRoundedRect(QRectF(place).adjusted(-1, -1, 1, 1), kRounding + 1, kRounding + 1);
  } else {
    const bool isHovered = option.state & QStyle::State_MouseOver;
    painter.setPen(QPen(faded(option.palette.color(QPalette::WindowText), isHovered ? 0.55f : 0.2f), 1));
    painter.drawRoundedRect(edge, kRounding - 0.5, kRounding - 0.5);
  }
}

// Whether there is one to be seen.
bool PresetDelegate::paintStar(QPainter& painter, const QRect& place, const QStyleOptionViewItem& option,
                               bool isFavorite) const {
  const bool isNear = option.state & (QStyle::State_MouseOver | QStyle::State_Selected);
  if (!isFavorite && !isNear) return false;
  const QColor color = isFavorite ? QColor("#e0a526") : inspectorColors(option.palette).dimText;
  painter.setPen(QPen(color, 1.1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(isFavorite ? QBrush(color) : QBrush(Qt::NoBrush));
  painter.drawPath(star(QRectF(place).center() + QPointF(0, 0.5), 5.2));
  return true;
}

void PresetDelegate::paintHeading(QPainter& painter, const QStyleOptionViewItem& option,
                                  const QModelIndex& index) const {
  QFont font = smallFont(view_.font());
  font.setWeight(QFont::DemiBold);
  painter.setFont(font);
  painter.setPen(inspectorColors(option.palette).dimText);
  const QRect place = option.rect.adjusted(kGap, 2, -kGap, 0);
  const QString text = painter.fontMetrics().elidedText(index.data().toString(), Qt::ElideRight, place.width());
  painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter, text);
}

void PresetDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing);
  if (index.data(PresetModel::kHeadingRole).toBool()) {
    paintHeading(*painter, option, index);
  } else {
    paintPicture(*painter, pictureRect(option.rect), option, index);
    const QRect starPlace = starRect(option.rect);
    QRect name = nameRect(option.rect).adjusted(1, 0, 0, 0);
    if (paintStar(*painter, starPlace, option, index.data(PresetModel::kFavoriteRole).toBool())) {
      name.setRight(starPlace.left() - 1);
    }
    painter->setFont(smallFont(view_.font()));
    painter->setPen(option.palette.color(QPalette::WindowText));
    const QString text = painter->fontMetrics().elidedText(index.data().toString(), Qt::ElideRight, name.width());
    painter->drawText(name, Qt::AlignLeft | Qt::AlignVCenter, text);
  }
  painter->restore();
}

QWidget* PresetDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex&) const {
  auto* editor = new QLineEdit(parent);
  editor->setFont(smallFont(view_.font()));
  editor->setFrame(false);
  editor->setTextMargins(0, 0, 0, 0);
  editor->setAccessibleName(windowText("Name of the preset"));
  return editor;
}

void PresetDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                          const QModelIndex&) const {
  editor->setGeometry(nameRect(option.rect));
}

}  // namespace host
