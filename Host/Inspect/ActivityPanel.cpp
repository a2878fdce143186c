// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/ActivityPanel.h"

#include "Host/Inspect/Appearance.h"
#include "Host/Inspect/RenderJob.h"
#include "Host/Inspect/WindowText.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>
#include <algorithm>

namespace host {

namespace {

constexpr int kMostRows = 100;
constexpr int kMostHeight = 168;

QToolButton* newButton(const QString& text, const QString& name, QWidget* parent) {
  auto* button = new QToolButton(parent);
  button->setText(text);
  button->setAutoRaise(true);
  button->setFocusPolicy(Qt::StrongFocus);
  button->setAccessibleName(name);
  button->setToolTip(name);
  return button;
}

}  // namespace

// One thing that goes on, or went wrong.
class ActivityRow : public QWidget {
 public:
  ActivityRow(const QString& title, QWidget* parent) : QWidget(parent), title_(new QLabel(title, this)) {
    detail_ = new QLabel(this);
    detail_->setForegroundRole(QPalette::PlaceholderText);
    detail_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    detail_->setTextFormat(Qt::PlainText);
    detail_->setWordWrap(true);
    title_->setTextFormat(Qt::PlainText);
    buttons = new QHBoxLayout;
    buttons->setSpacing(2);
    auto* top = new QHBoxLayout;
    top->setSpacing(12);
    top->addWidget(title_);
    top->addStretch(1);
    top->addLayout(buttons);
    column = new QVBoxLayout(this);
    column->setContentsMargins(16, 6, 12, 6);
    column->setSpacing(3);
    column->addLayout(top);
    column->addWidget(detail_);
  }

  void setDetail(const QString& text) {
    detail_->setText(text);
    detail_->setVisible(!text.isEmpty());
    setAccessibleName(title_->text());
    setAccessibleDescription(text);
  }
  QString detail() const { return detail_->text(); }

  std::unique_ptr<RenderJob> job;
  bool isFailure = false;
  QProgressBar* progress = nullptr;
  QHBoxLayout* buttons;
  QVBoxLayout* column;

 private:
  QLabel* title_;
  QLabel* detail_;
};

namespace {

void showState(ActivityRow& row) {
  const RenderJob& job = *row.job;
  const bool runs = job.state() == RenderJob::State::Running;
  row.progress->setVisible(runs);
  if (runs) {
    row.progress->setRange(0, static_cast<int>(std::min<std::uint64_t>(job.steps(), 1 << 30)));
    row.progress->setValue(static_cast<int>(std::min<std::uint64_t>(job.done(), 1 << 30)));
    row.setDetail(job.steps() > 1 ? windowText("%1 of %2 frames").arg(job.done()).arg(job.steps())
                                  : windowText("Working\u2026"));
    return;
  }
  QString text = job.message();
  if (job.state() == RenderJob::State::Canceled) text = windowText("Canceled. Nothing unfinished was left.");
  if (job.state() == RenderJob::State::Done && text.isEmpty()) text = windowText("Done.");
  row.setDetail(text);
}

}  // namespace

ActivityPanel::ActivityPanel(QWidget* parent) : QScrollArea(parent), content_(new QWidget) {
  setFrameShape(QFrame::NoFrame);
  setWidgetResizable(true);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setAccessibleName(windowText("Activity"));
  column_ = new QVBoxLayout(content_);
  column_->setContentsMargins(0, 4, 0, 4);
  column_->setSpacing(0);
  column_->addStretch(1);
  setWidget(content_);
}

ActivityPanel::~ActivityPanel() {
  changed_ = nullptr;
}

void ActivityPanel::add(ActivityRow* row) {
  column_->insertWidget(0, row);
  rows_.prepend(row);
  while (rows_.size() > kMostRows) {
    const auto old = std::find_if(rows_.rbegin(), rows_.rend(), [](const ActivityRow* each) {
      return !each->job || each->job->state() != RenderJob::State::Running;
    });
    if (old == rows_.rend()) break;
    remove(*old);
  }
}

void ActivityPanel::remove(ActivityRow* row) {
  rows_.removeAll(row);
  row->hide();
  row->deleteLater();
  tell();
}

QSize ActivityPanel::sizeHint() const {
  return {400, std::min(content_->sizeHint().height() + 2, kMostHeight)};
}

void ActivityPanel::tell() {
  setFixedHeight(sizeHint().height());
  if (changed_) changed_();
}

void ActivityPanel::addJob(const QString& title,
                           const std::function<std::unique_ptr<RenderJob>(std::function<void()> told)>& start) {
  auto* row = new ActivityRow(title, content_);
  row->progress = new QProgressBar(row);
  row->progress->setTextVisible(false);
  row->progress->setFixedHeight(4);
  row->progress->setAccessibleName(title);
  row->column->addWidget(row->progress);
  auto* cancel = newButton(windowText("Cancel"), windowText("Cancel the export"), row);
  row->buttons->addWidget(cancel);
  add(row);
  row->job = start([this, row, cancel] {
    if (!row->job) return;
    showState(*row);
    if (row->job->state() != RenderJob::State::Running && !cancel->isHidden()) {
      cancel->hide();
      if (row->job->state() == RenderJob::State::Done) {
        auto* folder = newButton(windowText("Show Folder"), windowText("Show the folder of the file"), row);
        const QString path = QFileInfo(row->job->output()).absolutePath();
        QObject::connect(folder, &QToolButton::clicked, row,
                         [path] { QDesktopServices::openUrl(QUrl::fromLocalFile(path)); });
        row->buttons->addWidget(folder);
      }
      auto* close = newButton(QStringLiteral("\u00d7"), windowText("Take it from the list"), row);
      QObject::connect(close, &QToolButton::clicked, row, [this, row] { remove(row); });
      row->buttons->addWidget(close);
    }
    tell();
  });
  QObject::connect(cancel, &QToolButton::clicked, row, [row] { row->job->cancel(); });
  showState(*row);
  tell();
}

void ActivityPanel::addFailure(const QString& title, const QString& text) {
  addText(title, text, true);
}

void ActivityPanel::addRemark(const QString& text) {
  addText(windowText("Remark"), text, false);
}

void ActivityPanel::addText(const QString& title, const QString& text, bool isFailure) {
  if (!rows_.isEmpty() && !rows_.first()->job && rows_.first()->detail() == text) return;
  auto* row = new ActivityRow(title, content_);
  row->isFailure = isFailure;
  row->setDetail(text);
  auto* close = newButton(QStringLiteral("\u00d7"), windowText("Take it from the list"), row);
  QObject::connect(close, &QToolButton::clicked, row, [this, row] { remove(row); });
  row->buttons->addWidget(close);
  add(row);
  tell();
}

int ActivityPanel::runningJobs() const {
  return static_cast<int>(std::ranges::count_if(
      rows_, [](const ActivityRow* row) { return row->job && row->job->state() == RenderJob::State::Running; }));
}

int ActivityPanel::failures() const {
  return static_cast<int>(std::ranges::count_if(rows_, [](const ActivityRow* row) {
    return row->isFailure || (row->job && row->job->state() == RenderJob::State::Failed);
  }));
}

QString ActivityPanel::summary() const {
  QStringList parts;
  if (const int jobs = runningJobs(); jobs > 0) {
    parts.append(jobs == 1 ? windowText("1 export running") : windowText("%1 exports running").arg(jobs));
  }
  if (const int problems = failures(); problems > 0) {
    parts.append(problems == 1 ? windowText("1 problem") : windowText("%1 problems").arg(problems));
  }
  if (parts.isEmpty() && !rows_.isEmpty()) {
    const bool hasJob = std::ranges::any_of(rows_, [](const ActivityRow* row) { return row->job != nullptr; });
    parts.append(hasJob ? windowText("Exports done") : windowText("Remark"));
  }
  return parts.join(", ");
}

void ActivityPanel::cancelJobs() {
  for (ActivityRow* row : std::as_const(rows_)) {
    if (row->job) row->job->cancel();
  }
}

void ActivityPanel::clearFinished() {
  const QList<ActivityRow*> rows = rows_;
  for (ActivityRow* row : rows) {
    if (!row->job || row->job->state() != RenderJob::State::Running) remove(row);
  }
}

}  // namespace host
