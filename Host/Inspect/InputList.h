// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>
#include <cstddef>
#include <functional>

class QAbstractButton;

namespace host {

// The pictures that flow into an effect, a row for each: what it is to the effect, and its file, which a press of the
// button or a dropped file replaces.
class InputList : public QWidget {
 public:
  struct Told {
    std::function<void(std::size_t input)> wanted;                        // a press: the window opens a dialog
    std::function<void(std::size_t input, const QString& path)> dropped;  // one local file
  };
  InputList(const QStringList& roles, Told told, QWidget* parent = nullptr);

  // By input, empty where there is none. May be shorter than there are rows.
  void setPaths(const QStringList& paths);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  const Told told_;
  QList<QAbstractButton*> buttons_;
  QList<QWidget*> rows_;
};

}  // namespace host
