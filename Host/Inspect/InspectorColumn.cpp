// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/InspectorColumn.h"

#include "HistogramEditor/VRTHistogramEditor.h"
#include "Host/Inspect/Appearance.h"
#include "Host/Inspect/DocumentActions.h"
#include "Host/Inspect/EditorSlot.h"
#include "Host/Inspect/InspectorMetrics.h"
#include "Host/Inspect/NumberEditor.h"
#include "Host/Inspect/NumberField.h"
#include "Host/Inspect/ParameterSection.h"
#include "Host/Inspect/ValueEditors.h"
#include "Host/Rendering/PortKinds.h"
#include "TarnCore/TCHistogram.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

namespace host {
namespace {

using namespace inspectorMetrics;

constexpr int kLabelWidth = 78;
constexpr int kRowHeight = 24;

bool bringsEditor(const QCPort& port) {
  return ParameterDocument::hasStateFile(port) || portKindOf(port) == PortKind::Object;
}

constexpr QMargins kInsets{kLeftInset, 0, kRightInset, 0};

class Rule : public QWidget {
 public:
  using QWidget::QWidget;

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter(this).fillRect(rect().marginsRemoved(kInsets), inspectorColors(palette()).separator);
  }
};

}  // namespace

InspectorColumn::InspectorColumn(DocumentActions& actions, const Heading& heading, QWidget* parent)
    : QScrollArea(parent), content_(new QWidget) {
  setFrameShape(QFrame::NoFrame);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setFixedWidth(kContentWidth + 2 * kSideMargin);
  content_->setMinimumWidth(kContentWidth + kSideMargin);
  column_ = new QVBoxLayout(content_);
  column_->setContentsMargins(kSideMargin, 18, 0, 18);
  column_->setSpacing(10);
  addHeading(*column_, heading);
  belowHeading_ = column_->count();
  bool afterSection = true;
  for (QCPort* port : actions.document().parameters()) {
    const bool isSection = bringsEditor(*port);
    if (isSection || afterSection) addRule(*column_);
    if (isSection) {
      addSection(*column_, *port, actions);
    } else {
      addRow(*column_, *port);
    }
    afterSection = isSection;
  }
  column_->addStretch(1);
  setWidget(content_);
  setWidgetResizable(true);
}

void InspectorColumn::addHeading(QVBoxLayout& column, const Heading& heading) {
  auto* title = new QLabel(heading.title, content_);
  QFont font = title->font();
  font.setPointSizeF(font.pointSizeF() * 1.35);
  font.setWeight(QFont::DemiBold);
  title->setFont(font);
  title->setContentsMargins(kInsets);
  column.addWidget(title);
  if (heading.detail.isEmpty()) return;
  auto* detail = new QLabel(heading.detail, content_);
  detail->setForegroundRole(QPalette::PlaceholderText);
  detail->setWordWrap(true);
  detail->setFixedWidth(kContentWidth);
  detail->setContentsMargins(kInsets);
  column.addWidget(detail);
}

void InspectorColumn::addRow(QVBoxLayout& column, QCPort& port) {
  auto* row = new QWidget(content_);
  row->setFixedWidth(kContentWidth);
  row->setMinimumHeight(kRowHeight);
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(kInsets);
  layout->setSpacing(6);
  const QString name = QString::fromStdString(port.name());
  auto* label = new QLabel(row);
  label->setFixedWidth(kLabelWidth);
  label->setText(label->fontMetrics().elidedText(name, Qt::ElideRight, kLabelWidth));
  label->setToolTip(QString::fromStdString(port.key()));
  layout->addWidget(label);
  QWidget* editor = makeValueEditor(port, row);
  label->setBuddy(editor);
  if (auto* number = dynamic_cast<NumberEditor*>(editor)) number->field().addHandle(*label);
  layout->addWidget(editor, 1);
  column.addWidget(row);
}

void InspectorColumn::addSection(QVBoxLayout& column, QCPort& port, DocumentActions& actions) {
  auto* section = new ParameterSection(port, actions, ParameterSection::Folding::Possible, content_);
  section->setFixedWidth(kContentWidth);
  column.addWidget(section);
  sections_.push_back(section);
}

void InspectorColumn::addRule(QVBoxLayout& column) {
  auto* line = new Rule(content_);
  line->setFixedSize(kContentWidth, 1);
  column.addSpacing(2);
  column.addWidget(line);
  column.addSpacing(2);
}

ParameterSection* InspectorColumn::section(const QCPort& port) const {
  for (ParameterSection* section : sections_) {
    if (&section->port() == &port) return section;
  }
  return nullptr;
}

void InspectorColumn::setInputs(QWidget* inputs) {
  inputs->setFixedWidth(kContentWidth);
  column_->insertWidget(belowHeading_, inputs);
}

void InspectorColumn::setCounts(const TCHistogram& input, const TCHistogram& result, std::uint32_t bits) {
  const auto inputCounts = std::make_shared<const TCHistogram>(input);
  const auto resultCounts = std::make_shared<const TCHistogram>(result);
  for (ParameterSection* section : sections_) {
    auto* editor = dynamic_cast<VRTHistogramEditor*>(section->slot().editor());
    if (!editor) continue;
    editor->setCounts(VRTHistogramSide::Input, inputCounts, bits);
    editor->setCounts(VRTHistogramSide::Result, resultCounts, bits);
  }
}

void InspectorColumn::loaded(QCPort& port) {
  if (ParameterSection* of = section(port)) of->slot().refresh();
}

void InspectorColumn::updateTitles() {
  for (ParameterSection* section : sections_) section->updateTitle();
}

}  // namespace host
