// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/RenderJob.h"

#include "Host/Files/ProgramFolder.h"
#include "Host/Inspect/WindowText.h"

#include <QTimer>
#include <utility>

namespace host {
namespace {

constexpr int kPatience = 3000;  // milliseconds for clearing up
constexpr qsizetype kMostSaid = 16384;

}  // namespace

RenderJob::RenderJob(QStringList arguments, QString output, std::unique_ptr<QTemporaryDir> files, Told told)
    : output_(std::move(output)), files_(std::move(files)), told_(std::move(told)) {
  arguments = QStringList{"render", "--tell-progress"} + arguments + QStringList{"--output", output_};
  process_.setStandardInputFile(QProcess::nullDevice());
  QObject::connect(&process_, &QProcess::readyReadStandardOutput, this, [this] { readLines(); });
  QObject::connect(&process_, &QProcess::readyReadStandardError, this, [this] {
    said_ += process_.readAllStandardError();
    said_ = said_.right(kMostSaid);
  });
  QObject::connect(&process_, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
    if (error != QProcess::FailedToStart) return;
    said_ = process_.errorString().toUtf8();
    QTimer::singleShot(0, this, [this] { end(State::Failed); });
  });
  QObject::connect(&process_, &QProcess::finished, this, [this](int code, QProcess::ExitStatus status) {
    const bool worked = status == QProcess::NormalExit && code == 0;
    end(worked ? State::Done : isCanceled_ ? State::Canceled : State::Failed);
  });
  process_.start(QString::fromStdString(hostProgram()), arguments);
}

RenderJob::~RenderJob() {
  process_.disconnect(this);
  if (process_.state() == QProcess::NotRunning) return;
  process_.terminate();
  if (!process_.waitForFinished(kPatience)) process_.kill();
  process_.waitForFinished(kPatience);
}

void RenderJob::readLines() {
  while (process_.canReadLine()) {
    const QList<QByteArray> numbers = process_.readLine().trimmed().split(' ');
    if (numbers.size() != 2) continue;
    done_ = numbers[0].toULongLong();
    steps_ = numbers[1].toULongLong();
  }
  if (told_.progressed) told_.progressed();
}

void RenderJob::end(State state) {
  if (state_ != State::Running) return;
  said_ += process_.readAllStandardError();
  state_ = state;
  files_.reset();
  if (told_.ended) told_.ended();
}

QString RenderJob::message() const {
  QString text = QString::fromUtf8(said_).trimmed();
  text.replace("\nvorto: ", "\n");
  if (text.startsWith("vorto: ")) text.remove(0, 7);
  if (text.isEmpty() && state_ == State::Failed) text = windowText("The program ended without a reason.");
  return text;
}

void RenderJob::cancel() {
  if (state_ != State::Running || isCanceled_) return;
  isCanceled_ = true;
  process_.terminate();
  QTimer::singleShot(kPatience, &process_, [this] { process_.kill(); });
}

}  // namespace host
