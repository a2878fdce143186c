// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/ColorEditor.h"

#include "Controls/VRTInteractions.h"
#include "Host/Inspect/Appearance.h"

#include <QAbstractButton>
#include <QColorDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <algorithm>
#include <memory>

namespace host {
namespace {

constexpr QSize kSwatchSize{66, 22};

QColor colorOf(const QCColorPort& port) {
  const auto color = port.colorValue();
  const auto component = [](double value) { return static_cast<float>(std::clamp(value, 0.0, 1.0)); };
  return QColor::fromRgbF(component(color->red), component(color->green), component(color->blue),
                          component(color->alpha));
}

class Swatch : public QAbstractButton {
 public:
  Swatch(const QCColorPort& port, QWidget* parent) : QAbstractButton(parent), port_(port) {
    setFixedSize(kSwatchSize);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    const QColor color = colorOf(port_);
    const QRect well = rect().adjusted(1, 1, -1, -1);
    if (color.alpha() < 255) {
      const InspectorColors colors = inspectorColors(palette());
      painter.fillRect(well, colors.checkerLight);
      for (int y = well.top(), row = 0; y <= well.bottom(); y += 5, ++row) {
        for (int x = well.left() + row % 2 * 5; x <= well.right(); x += 10) {
          painter.fillRect(QRect(x, y, 5, 5).intersected(well), colors.checkerDark);
        }
      }
    }
    painter.fillRect(well, color);
    painter.setPen(hasFocus() ? palette().color(QPalette::Highlight) : palette().color(QPalette::Dark));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
  }

 private:
  const QCColorPort& port_;
};

}  // namespace

ColorEditor::ColorEditor(QCColorPort& port, QWidget* parent)
    : QWidget(parent), port_(port), watch_(port, [this] { show(); }) {
  swatch_ = new Swatch(port, this);
  swatch_->setAccessibleName(QString::fromStdString(port.name()));
  QObject::connect(swatch_, &QAbstractButton::clicked, this, [this] { openDialog(); });
  text_ = new QLabel(this);
  text_->setForegroundRole(QPalette::PlaceholderText);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(8);
  row->addWidget(swatch_);
  row->addWidget(text_, 1);
  show();
}

ColorEditor::~ColorEditor() {
  if (!dialog_) return;
  delete dialog_;
  VRTPostEndInteraction(&port_);
}

void ColorEditor::show() {
  const QColor color = colorOf(port_);
  const QString alpha = color.alpha() < 255 ? QStringLiteral("%1").arg(color.alpha(), 2, 16, QLatin1Char('0')) : "";
  text_->setText(color.name() + alpha);
  swatch_->setAccessibleDescription(text_->text());
  swatch_->update();
}

void ColorEditor::openDialog() {
  if (dialog_) {
    dialog_->raise();
    return;
  }
  const NSObjectRef before = port_.value();
  VRTPostStartInteraction(&port_);
  dialog_ = new QColorDialog(colorOf(port_), this);
  dialog_->setWindowTitle(QString::fromStdString(port_.name()));
  dialog_->setOption(QColorDialog::ShowAlphaChannel);
  dialog_->setAttribute(Qt::WA_DeleteOnClose);
  QObject::connect(dialog_, &QColorDialog::currentColorChanged, this, [this](const QColor& color) {
    port_.setValue(std::make_shared<QCColor>(color.redF(), color.greenF(), color.blueF(), color.alphaF()));
  });
  QObject::connect(dialog_, &QDialog::rejected, this, [this, before] { port_.setValue(before); });
  QObject::connect(dialog_, &QDialog::finished, this, [this] { VRTPostEndInteraction(&port_); });
  dialog_->open();
}

}  // namespace host
