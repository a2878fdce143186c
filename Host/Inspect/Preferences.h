// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QByteArray>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <memory>

namespace host {

// What the inspector remembers from run to run: choices, sizes, and the files that were open, in
// $XDG_CONFIG_HOME/vorto/inspector.ini. Where that cannot be read or written everything is as at first, and nothing is
// said of it. What stands there is checked by whoever takes it.
class Preferences {
 public:
  explicit Preferences(bool isKept = true);  // else for this run alone, everything as at first

  QString text(const QString& name) const { return value(name).toString(); }  // empty when there is none
  void setText(const QString& name, const QString& text) { setValue(name, text); }
  QByteArray bytes(const QString& name) const { return value(name).toByteArray(); }
  void setBytes(const QString& name, const QByteArray& bytes) { setValue(name, bytes); }

  // The newest first, at most twelve; without those that are no longer there.
  QStringList recentFiles() const;
  void noteFile(const QString& path);
  void forgetRecentFiles();

 private:
  QVariant value(const QString& name) const;
  void setValue(const QString& name, const QVariant& value);

  std::unique_ptr<QSettings> settings_;  // null where nothing is kept
  QVariantMap values_;                   // then
};

}  // namespace host
