// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/ParameterSection.h"

#include "Host/Inspect/DocumentActions.h"
#include "Host/Inspect/Drops.h"
#include "Host/Inspect/EditorSlot.h"
#include "Host/Inspect/InspectorMetrics.h"
#include "Host/Inspect/ParameterClipboard.h"
#include "Host/Inspect/ParameterFields.h"
#include "Host/Inspect/PresetPart.h"
#include "Host/Inspect/WindowText.h"
#include "Host/Messages/Failure.h"
#include "Host/Rendering/Parameters.h"
#include "Host/Texts/NumberExpression.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
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
      actionsMenu_(new QMenu(this)),
      body_(new QVBoxLayout),
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
  column->addLayout(body_);
  body_->setContentsMargins(0, 0, 0, 0);
  body_->setSpacing(8);
  body_->addWidget(slot_, 0, Qt::AlignLeft);
  parts_.push_back(slot_);
  addFields();
  setFolded(false);
  updateTitle();
}

void ParameterSection::addMenu() {
  menu_->setText(QStringLiteral("\u22ef"));
  menu_->setAutoRaise(true);
  menu_->setPopupMode(QToolButton::InstantPopup);
  menu_->setStyleSheet("QToolButton::menu-indicator { image: none; }");
  menu_->setAccessibleName(windowText("%1 menu").arg(QString::fromStdString(port_.name())));
  if (stateKindOf(port_)) {
    addEdit("Copy", QKeySequence::Copy, &ParameterSection::copy);
    if (stateKindOf(port_) == StateKind::Gradient) {
      addEdit("Copy as CSS", QKeySequence(), &ParameterSection::copyAsCss);
    }
    addEdit("Paste", QKeySequence::Paste, &ParameterSection::paste);
    actionsMenu_->addSeparator();
  }
  actionsMenu_->addAction(windowText("Open State\u2026"), this, [this] { actions_.open(&port_); });
  actionsMenu_->addAction(windowText("Save State"), this, [this] { actions_.save(port_); });
  actionsMenu_->addAction(windowText("Save State As\u2026"), this, [this] { actions_.saveAs(port_); });
  actionsMenu_->addSeparator();
  actionsMenu_->addAction(windowText("Reset"), this, [this] { actions_.reset(port_); });
  menu_->setMenu(actionsMenu_);
}

// Its keys are for what has the keyboard in this section.
QAction* ParameterSection::addEdit(const char* text, const QKeySequence& keys, void (ParameterSection::*done)()) {
  QAction* action = actionsMenu_->addAction(windowText(text), this, [this, done] { (this->*done)(); });
  action->setShortcut(keys);
  action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
  addAction(action);
  return action;
}

void ParameterSection::addFields() {
  fields_ = makeParameterFields(
      port_, slot_->editor(), [this](const QMimeData& mime) { return pasteIntoField(mime); }, this);
  if (fields_) addPart(fields_);
  const auto kind = stateKindOf(port_);
  if (kind && kind != StateKind::Opaque) addPart(new PresetPart(port_, *kind, this));
}

void ParameterSection::addPart(QWidget* part) {
  body_->addWidget(part, 0, Qt::AlignLeft);
  parts_.push_back(part);
  part->setVisible(!title_->isCheckable() || title_->isChecked());
}

void ParameterSection::setFolded(bool folded) {
  title_->setChecked(!folded);
  for (QWidget* part : parts_) part->setVisible(!folded);
}

void ParameterSection::contextMenuEvent(QContextMenuEvent* event) {
  actionsMenu_->popup(event->globalPos());
}

namespace {

PropertyList stateToCopy(const QCPort& port) {
  auto state = port.stateValue();
  if (!state) throw Failure(ExitCode::Output, windowText("There is nothing to copy").toStdString());
  return std::move(*state);
}

}  // namespace

void ParameterSection::copy() {
  actions_.tried([this] {
    QApplication::clipboard()->setMimeData(mimeOfState(*stateKindOf(port_), stateToCopy(port_)).release());
  });
}

void ParameterSection::copyAsCss() {
  actions_.tried([this] {
    QApplication::clipboard()->setMimeData(
        mimeOfState(*stateKindOf(port_), stateToCopy(port_), StateNotation::Css).release());
  });
}

void ParameterSection::paste() {
  if (const QMimeData* mime = QApplication::clipboard()->mimeData()) paste(*mime);
}

void ParameterSection::paste(const QMimeData& mime) {
  const auto color = colorOfMime(mime);
  if (color && fields_ && fields_->takeColor(*color)) return;
  if (const std::string file = droppedFile(mime); !file.empty()) return actions_.load(file, &port_);
  actions_.tried([&] {
    if (color) {
      throw Failure(ExitCode::Usage,
                    windowText("The clipboard holds a color; select a color stop to give it to").toStdString());
    }
    setEditedState(port_, stateOfMime(mime, *stateKindOf(port_)));
  });
}

bool ParameterSection::pasteIntoField(const QMimeData& mime) {
  const bool isState = mime.hasFormat(kStateMimeType) || !droppedFile(mime).empty() || mime.hasFormat(kColorMimeType);
  if (!isState) {
    if (valueOfExpression(mime.text().toStdString()).fault == ExpressionFault::None) return false;
    if (!colorOfMime(mime) && !holdsState(mime, *stateKindOf(port_))) return false;
  }
  paste(mime);
  return true;
}

void ParameterSection::updateTitle() {
  const bool modified = actions_.document().isModified(port_);
  const QString name = QString::fromStdString(port_.name());
  title_->setText(name + (modified ? QStringLiteral(" \u2022") : QString()));
  title_->updateGeometry();
  title_->setAccessibleName(modified ? windowText("%1, modified").arg(name) : name);
  const std::string& file = actions_.document().file(port_);
  if (fields_) fields_->refresh();
  menu_->setToolTip(file.empty() ? windowText("State") : QString::fromStdString(file));
}

}  // namespace host
