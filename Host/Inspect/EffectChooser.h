// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Rendering/Effects.h"

#include <QDialog>
#include <QString>
#include <functional>
#include <string>

class QLineEdit;
class QListWidget;

namespace host {

QString effectKindTitle(EffectKind kind);  // "Filters", ..., in the language of the windows

// All effects, with a field to search by name, kind and description: typing narrows the list, Return takes what is
// selected.
class EffectChooser : public QDialog {
 public:
  EffectChooser(const std::string& present, std::function<void(const std::string& name)> chosen, QWidget* parent);

  void search(const QString& text);  // by words, in any case; selects the first that fits

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void take();

  const std::function<void(const std::string& name)> chosen_;
  QLineEdit* field_;
  QListWidget* list_;
};

}  // namespace host
