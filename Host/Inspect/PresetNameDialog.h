// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QDialog>
#include <QStringList>
#include <functional>

class QComboBox;
class QDialogButtonBox;
class QLabel;
class QLineEdit;

namespace host {

// Takes the name under which a preset is saved, and its collection; says when there is one of that name, which would be
// replaced.
class PresetNameDialog : public QDialog {
 public:
  struct Callbacks {
    std::function<bool(const QString& name, const QString& collection)> isTaken;
    std::function<void(const QString& name, const QString& collection)> save;
  };
  PresetNameDialog(const QStringList& collections, Callbacks callbacks, QWidget* parent);

 private:
  void update();
  QString collection() const;

  const Callbacks callbacks_;
  QLineEdit* name_;
  QComboBox* collection_;
  QLabel* hint_;
  QDialogButtonBox* buttons_;
};

}  // namespace host
