// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <cstdint>
#include <functional>
#include <memory>

namespace host {

// vorto render in a process of its own, so that the window goes on: its progress, and how it ended. Ended early it
// removes what it has not finished, and the files of before stay.
class RenderJob : public QObject {
 public:
  struct Told {
    std::function<void()> progressed;
    std::function<void()> ended;  // once, from the event loop; the job may be deleted then
  };
  // `arguments` are those of "render", without the output. The folder, which may be null, holds files that they name,
  // and is removed when the job is. It starts at once.
  RenderJob(QStringList arguments, QString output, std::unique_ptr<QTemporaryDir> files, Told told);
  ~RenderJob() override;  // ends it, and waits for that

  enum class State { Running, Done, Canceled, Failed };
  State state() const { return state_; }
  const QString& output() const { return output_; }
  std::uint64_t done() const { return done_; }    // steps
  std::uint64_t steps() const { return steps_; }  // 0 as long as nothing is known
  QString message() const;                        // what the program said, without its name; may be empty

  void cancel();

 private:
  void readLines();
  void end(State state);

  const QString output_;
  std::unique_ptr<QTemporaryDir> files_;
  const Told told_;
  QProcess process_;
  QByteArray said_;
  State state_ = State::Running;
  bool isCanceled_ = false;
  std::uint64_t done_ = 0;
  std::uint64_t steps_ = 0;
};

}  // namespace host
