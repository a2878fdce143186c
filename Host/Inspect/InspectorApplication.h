// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Commands/InspectOptions.h"
#include "Host/Inspect/DesktopAppearance.h"
#include "Host/Inspect/Preferences.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QWidget>
#include <memory>
#include <string>

namespace host {

class EffectWindow;
class ParameterDocument;
class StateWindow;

// All windows of the program, and what they share: preferences and appearance. Windows belong to it and go when they
// are closed; the program ends with the last one.
class InspectorApplication : public QObject {
 public:
  // `appearance` is "light", "dark", "desktop", or empty for what was chosen last. With `remembers` choices are kept
  // from run to run. The application object is there.
  InspectorApplication(const std::string& appearance, bool remembers);
  ~InspectorApplication() override;

  Preferences& preferences() { return preferences_; }

  // They throw Failure for what cannot be opened at all, and then no window comes. What an effect or its inputs turn
  // out to be bad for is shown in the window.
  EffectWindow& openEffect(const InspectOptions& options);
  StateWindow& openState(const std::string& assignment);  // "kind=FILE"
  // As a double click on files does: each state in a window of its own, pictures and clips as inputs of the effect that
  // was looked at last. What fails is said in a window, or thrown where there would be none.
  void openFiles(const QStringList& paths);

  std::string usualEffect() const;  // for pictures: that which was looked at last
  QList<QWidget*> windows() const;

  enum class Appearance { Desktop, Light, Dark };
  Appearance appearance() const { return appearance_; }
  void setAppearance(Appearance appearance);

 private:
  void show(QWidget* window);
  void applyNow();

  Preferences preferences_;
  Appearance appearance_ = Appearance::Desktop;
  std::unique_ptr<DesktopAppearance> desktop_;
  QList<QPointer<QWidget>> windows_;
};

}  // namespace host
