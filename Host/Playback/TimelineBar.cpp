// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Playback/TimelineBar.h"

#include "Host/Inspect/WindowText.h"
#include "Host/Playback/MemoryButton.h"
#include "Host/Playback/PlaybackActions.h"
#include "Host/Playback/Player.h"
#include "Host/Playback/PositionField.h"
#include "Host/Playback/TimelineStrip.h"
#include "Host/Playback/TransportButton.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QToolButton>
#include <algorithm>
#include <cmath>

namespace host {
namespace {

constexpr int kRowHeight = 40;
constexpr int kLeastWidth = 260;
constexpr int kLeftMargin = 12;
constexpr int kRightMargin = 16;
constexpr int kGap = 12;

// To a hundredth for rates as "29.97", without zeros.
QString rateText(double rate, int decimals) {
  const double scale = decimals == 2 ? 100 : 10;
  const double rounded = std::round(rate * scale) / scale;
  return QLocale().toString(rounded, 'f', rounded == std::floor(rounded) ? 0 : decimals);
}

QString unitName(PositionUnit unit) {
  switch (unit) {
    case PositionUnit::Frames:
      return windowText("frames");
    case PositionUnit::TimeCode:
      return windowText("time code");
    case PositionUnit::Seconds:
      return windowText("seconds");
    case PositionUnit::Progress:
      break;
  }
  return {};
}

}  // namespace

TimelineBar::TimelineBar(Player& player, QWidget* parent)
    : QWidget(parent),
      player_(player),
      actions_(new PlaybackActions(
          player, [this] { field_->startTyping(); }, this)),
      strip_(new TimelineStrip(player, this)),
      controls_(new QWidget(this)),
      picture_(new QLabel(this)) {
  info_ = picture_;
  picture_->setForegroundRole(QPalette::PlaceholderText);
  addActions(actions_->all());

  auto* inner = new QHBoxLayout(controls_);
  inner->setContentsMargins(0, 0, 0, 0);
  inner->setSpacing(2);
  addControls(inner);
  auto* row = new QHBoxLayout;
  row->setContentsMargins(kLeftMargin, 0, kRightMargin, 0);
  row->setSpacing(kGap);
  row->addWidget(controls_, 1);
  row->addStretch(0);
  row->addWidget(picture_);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->setSizeConstraint(QLayout::SetNoConstraint);
  column->addWidget(strip_);
  column->addLayout(row, 1);

  player_.listen(*this, {.stateChanged =
                             [this] {
                               follow();
                               showFigures();
                             },
                         .figuresChanged = [this] { showFigures(); },
                         .cacheChanged = [this] { fit(); }});
  follow();
  showFigures();
}

TransportButton* TimelineBar::addButton(QAction* action, int glyph) {
  auto* button = new TransportButton(static_cast<TransportGlyph>(glyph), controls_);
  button->setTexts(action->text(), action->shortcut().toString(QKeySequence::NativeText));
  QObject::connect(button, &QAbstractButton::clicked, action, &QAction::trigger);
  controls_->layout()->addWidget(button);
  return button;
}

QToolButton* TimelineBar::addTextButton(const QString& name) {
  auto* button = new QToolButton(controls_);
  button->setAutoRaise(true);
  button->setFocusPolicy(Qt::TabFocus);
  button->setToolButtonStyle(Qt::ToolButtonTextOnly);
  button->setToolTip(name);
  controls_->layout()->addWidget(button);
  return button;
}

void TimelineBar::addControls(QHBoxLayout* row) {
  goToIn_ = addButton(actions_->goToIn, static_cast<int>(TransportGlyph::GoToIn));
  addButton(actions_->stepBack, static_cast<int>(TransportGlyph::StepBack))->setAutoRepeat(true);
  play_ = addButton(actions_->play, static_cast<int>(TransportGlyph::Play));
  addButton(actions_->stepForward, static_cast<int>(TransportGlyph::StepForward))->setAutoRepeat(true);
  goToOut_ = addButton(actions_->goToOut, static_cast<int>(TransportGlyph::GoToOut));
  row->addSpacing(10);
  field_ = new PositionField(player_, controls_);
  row->addWidget(field_);
  unit_ = addTextButton(windowText("Counts in another unit"));
  QObject::connect(unit_, &QAbstractButton::clicked, this, [this] { nextUnit(); });
  row->addSpacing(6);
  loop_ = new TransportButton(TransportGlyph::Around, controls_);
  QObject::connect(loop_, &QAbstractButton::clicked, this, [this] { nextLooping(); });
  row->addWidget(loop_);
  mode_ = addTextButton(windowText("Shows every frame, or keeps time and drops frames"));
  QObject::connect(mode_, &QAbstractButton::clicked, this, [this] {
    player_.setMode(player_.mode() == PlayMode::RealTime ? PlayMode::EveryFrame : PlayMode::RealTime);
  });
  row->addSpacing(6);
  figures_ = new QLabel(controls_);
  figures_->setForegroundRole(QPalette::PlaceholderText);
  figures_->setAccessibleName(windowText("Rate"));
  row->addWidget(figures_);
  row->addSpacing(kGap);
  row->addStretch(1);
  memory_ = new MemoryButton(player_, {actions_->readAhead, actions_->emptyCache}, controls_);
  row->addWidget(memory_);
}

void TimelineBar::setPictureText(const QString& text) {
  if (text == picture_->text()) return;
  picture_->setText(text);
  fit();
}

void TimelineBar::setInfo(QWidget* widget) {
  auto* row = static_cast<QHBoxLayout*>(layout()->itemAt(1)->layout());
  delete row->replaceWidget(info_, widget);  // the item of the former one
  info_->setVisible(false);
  if (info_ != picture_) info_->deleteLater();
  info_ = widget;
  fit();
}

PositionUnit TimelineBar::unit() const {
  return field_->unit();
}

void TimelineBar::setUnit(PositionUnit unit) {
  field_->setUnit(unit);
  follow();
}

void TimelineBar::nextUnit() {
  const auto units = unitsOf(player_.times());
  const auto present = std::find(units.begin(), units.end(), unit());
  setUnit(present + 1 >= units.end() ? units.front() : *(present + 1));
}

void TimelineBar::nextLooping() {
  switch (player_.looping()) {
    case Looping::Around:
      return player_.setLooping(Looping::BackAndForth);
    case Looping::BackAndForth:
      return player_.setLooping(Looping::Off);
    case Looping::Off:
      return player_.setLooping(Looping::Around);
  }
}

void TimelineBar::follow() {
  const bool moves = player_.times().count() > 1;
  strip_->setVisible(moves);
  controls_->setVisible(moves);
  setFixedHeight(kRowHeight + (moves ? strip_->sizeHint().height() - 4 : 0));

  const bool plays = player_.isPlaying();
  play_->setGlyph(plays ? TransportGlyph::Pause : TransportGlyph::Play);
  play_->setTexts(actions_->play->text(), QKeySequence(Qt::Key_Space).toString(QKeySequence::NativeText));
  const bool isAround = player_.looping() == Looping::Around;
  const bool isOnce = player_.looping() == Looping::Off;
  loop_->setGlyph(isAround ? TransportGlyph::Around : isOnce ? TransportGlyph::Once : TransportGlyph::BackAndForth);
  loop_->setTexts((isAround ? actions_->loopAround
                   : isOnce ? actions_->loopOff
                            : actions_->loopBackAndForth)
                      ->text(),
                  {});
  mode_->setText((player_.mode() == PlayMode::RealTime ? actions_->realTime : actions_->everyFrame)->text());
  mode_->setAccessibleName(mode_->text());

  field_->setUnit(field_->unit());
  const QString name = unitName(field_->unit());
  unit_->setText(name);
  unit_->setAccessibleName(name);
  unit_->setVisible(!name.isEmpty());
  strip_->setUnit(field_->unit());
  fit();
}

void TimelineBar::showFigures() {
  const QString wanted = rateText(player_.times().framesPerSecond(), 2);
  const double reached = player_.reachedRate();
  QString text = windowText("%1 fps").arg(wanted);
  if (player_.isPlaying() && reached > 0) {
    text = player_.mode() == PlayMode::RealTime && player_.dropped() > 0
               ? windowText("%1 of %2 fps, %3 dropped").arg(rateText(reached, 1), wanted).arg(player_.dropped())
               : windowText("%1 of %2 fps").arg(rateText(reached, 1), wanted);
  }
  // As wide as it may become, so that nothing moves while it plays.
  const char* longest = player_.mode() == PlayMode::RealTime ? "%1 of %2 fps, %3 dropped" : "%1 of %2 fps";
  const QString widest = windowText(longest).replace("%3", "000").arg(rateText(88.8, 1), wanted);
  figures_->setMinimumWidth(figures_->fontMetrics().horizontalAdvance(widest));
  if (text == figures_->text()) return;
  figures_->setText(text);
  fit();
}

QSize TimelineBar::minimumSizeHint() const {
  return {kLeastWidth, height()};
}

// What a narrow window has no room for goes, the least important first.
void TimelineBar::fit() {
  if (player_.times().count() < 2) return;
  const QLayout& row = *controls_->layout();
  int needed = kLeftMargin + kRightMargin + kGap + info_->sizeHint().width();
  for (int i = 0; i < row.count(); ++i) {
    QWidget* widget = row.itemAt(i)->widget();
    needed += row.spacing() + (widget ? widget->sizeHint().expandedTo(widget->minimumSize()).width()
                                      : row.itemAt(i)->sizeHint().width());
  }
  for (QWidget* widget : QList<QWidget*>{memory_, unit_, figures_, info_, mode_, goToIn_, goToOut_, loop_}) {
    const bool isEmpty = widget == unit_ && unit_->text().isEmpty();
    const bool isLeftOut = isEmpty || needed > width();
    if (isLeftOut) needed -= widget->sizeHint().expandedTo(widget->minimumSize()).width() + row.spacing();
    if (widget->isHidden() != isLeftOut) widget->setVisible(!isLeftOut);
  }
}

void TimelineBar::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  fit();
}

void TimelineBar::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::LanguageChange) fit();
}

}  // namespace host
