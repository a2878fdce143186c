// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/ParameterSection.h"

#include "Host/Inspect/DocumentActions.h"
#include "Host/Inspect/EditorSlot.h"
#include "Host/Inspect/InspectorMetrics.h"
#include "Host/Inspect/WindowText.h"

#include <QAbstractButton>
#include <QHBoxLayout>
#include <QMenu>
#include <QPainter>
#include <QToolButton>
#include <QVBoxLayout>

namespace host {

namespace {

// A name, with a small chevron before it that folds what is below away.
class FoldingTitle : public QAbstractButton {
 public:
  FoldingTitle(bool folds, QWidget* parent) : QAbstractButton(parent) {
    setCheckable(folds);
    setEnabled(true);
    setFocusPolicy(folds ? Qt::TabFocus : Qt::NoFocus);
    setAttribute(Qt::WA_TransparentForMouseEvents, !folds);
    if (folds) setToolTip(windowText("Show or hide the editor"));
  }
  QSize sizeHint() const override {
    return {textStart() + fontMetrics().horizontalAdvance(text()) + 4, fontMetrics().height() + 6};
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(palette().color(hasFocus() ? QPalette::Highlight : QPalette::WindowText));
    painter.drawText(rect().adjusted(textStart(), 0, 0, 0), Qt::AlignVCenter | Qt::AlignLeft, text());
    if (!isCheckable()) return;
    QPen pen(palette().color(hasFocus() ? QPalette::Highlight : QPalette::PlaceholderText), 1.5);
    pen.setCapStyle(Qt::RoundCap);
    pen.setJoinStyle(Qt::RoundJoin);
    painter.setPen(pen);
    painter.translate(4.5, height() / 2.0);
    if (!isChecked()) painter.rotate(-90);
    painter.drawPolyline(QPolygonF({{-3.5, -1.75}, {0, 1.75}, {3.5, -1.75}}));
  }

 private:
  int textStart() const { return isCheckable() ? 16 : 0; }
};

}  // namespace

ParameterSection::ParameterSection(QCPort& port, DocumentActions& actions, Folding folding, QWidget* parent)
    : QWidget(parent),
      port_(port),
      actions_(actions),
      title_(new FoldingTitle(folding == Folding::Possible, this)),
      menu_(new QToolButton(this)),
      slot_(new EditorSlot(port, this)) {
  QObject::connect(title_, &QAbstractButton::toggled, this, [this](bool on) { setFolded(!on); });
  addMenu();

  auto* header = new QHBoxLayout;
  header->setSpacing(4);
  header->setContentsMargins(inspectorMetrics::kLeftInset, 0, 0, 0);
  header->addWidget(title_);
  header->addStretch(1);
  header->addWidget(menu_);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(6);
  column->addLayout(header);
  column->addWidget(slot_, 0, Qt::AlignLeft);
  setFolded(false);
  updateTitle();
}

void ParameterSection::addMenu() {
  menu_->setText(QStringLiteral("\u22ef"));
  menu_->setAutoRaise(true);
  menu_->setPopupMode(QToolButton::InstantPopup);
  menu_->setStyleSheet("QToolButton::menu-indicator { image: none; }");
  menu_->setAccessibleName(windowText("%1 menu").arg(QString::fromStdString(port_.name())));
  auto* menu = new QMenu(menu_);
  menu->addAction(windowText("Open State\u2026"), this, [this] { actions_.open(&port_); });
  menu->addAction(windowText("Save State"), this, [this] { actions_.save(port_); });
  menu->addAction(windowText("Save State As\u2026"), this, [this] { actions_.saveAs(port_); });
  menu->addSeparator();
  menu->addAction(windowText("Reset"), this, [this] { actions_.reset(port_); });
  menu_->setMenu(menu);
}

void ParameterSection::setFolded(bool folded) {
  title_->setChecked(!folded);
  slot_->setVisible(!folded);
}

void ParameterSection::updateTitle() {
  const bool modified = actions_.document().isModified(port_);
  const QString name = QString::fromStdString(port_.name());
  title_->setText(name + (modified ? QStringLiteral(" \u2022") : QString()));
  title_->updateGeometry();
  title_->setAccessibleName(modified ? windowText("%1, modified").arg(name) : name);
  const std::string& file = actions_.document().file(port_);
  menu_->setToolTip(file.empty() ? windowText("State") : QString::fromStdString(file));
}

}  // namespace host
