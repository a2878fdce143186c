// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QSettings>
#include <QString>
#include <QStringList>

namespace host {

// What the inspector remembers from run to run: choices, sizes, and the files that were open, in
// $XDG_CONFIG_HOME/vorto/inspector.ini. Where that cannot be read or written everything is as at first, and nothing is
// said of it. What stands there is checked by whoever takes it.
class Preferences {
 public:
  Preferences();

  QString text(const QString& name) const { return settings_.value(name).toString(); }  // empty when there is none
  void setText(const QString& name, const QString& text) { settings_.setValue(name, text); }
  QByteArray bytes(const QString& name) const { return settings_.value(name).toByteArray(); }
  void setBytes(const QString& name, const QByteArray& bytes) { settings_.setValue(name, bytes); }

  // The newest first, at most twelve; without those that are no longer there.
  QStringList recentFiles() const;
  void noteFile(const QString& path);
  void forgetRecentFiles();

 private:
  QSettings settings_;
};

}  // namespace host
