// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QList>
#include <QScrollArea>
#include <QString>
#include <functional>
#include <memory>

class QVBoxLayout;

namespace host {

class ActivityRow;
class RenderJob;

// What goes on beside a window, and what went wrong: a row for each export, with its progress and a button that ends
// it, and one for each failure, the newest on top. Rows that are over can be taken away.
class ActivityPanel : public QScrollArea {
 public:
  explicit ActivityPanel(QWidget* parent = nullptr);
  ~ActivityPanel() override;

  // Called when what summary() says is something else.
  void setChanged(std::function<void()> changed) { changed_ = std::move(changed); }
  QString summary() const;  // "2 exports running, 1 problem"; empty when there is nothing

  // The panel owns the job, which `start` makes of what it is to tell.
  void addJob(const QString& title,
              const std::function<std::unique_ptr<class RenderJob>(std::function<void()> told)>& start);
  // A failure with the same text as the newest one is not added again.
  void addFailure(const QString& title, const QString& text);
  void addRemark(const QString& text);  // what is to be said and is no problem; the same

  int runningJobs() const;
  int failures() const;
  void cancelJobs();
  void clearFinished();

  QSize sizeHint() const override;  // as high as what it shows, up to three rows or so

 private:
  void addText(const QString& title, const QString& text, bool isFailure);
  void add(ActivityRow* row);
  void remove(ActivityRow* row);
  void tell();

  QWidget* content_;
  QVBoxLayout* column_;
  QList<ActivityRow*> rows_;
  std::function<void()> changed_;
};

}  // namespace host
