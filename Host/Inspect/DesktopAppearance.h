// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QObject>
#include <QTimer>
#include <functional>
#include <optional>

namespace host {

// Whether the desktop is dark: as its settings portal has it (org.freedesktop.appearance), and where there is none as
// its palette was when the program began. The portal is read when this is made, when a window of the program becomes
// active, and now and then; nobody waits for it.
class DesktopAppearance : public QObject {
 public:
  // `changed` is called from the event loop, whenever it is another one.
  explicit DesktopAppearance(std::function<void()> changed);
  bool isDark() const { return told_.value_or(wasDark_); }

 private:
  void read();

  const std::function<void()> changed_;
  const bool wasDark_;
  const bool hasBus_;
  std::optional<bool> told_;
  QTimer timer_;
};

}  // namespace host
