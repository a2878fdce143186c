// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/Preferences.h"

#include "Host/Files/FrameFiles.h"
#include "Host/Messages/Failure.h"

#include <QFileInfo>
#include <QStandardPaths>

namespace host {
namespace {

constexpr qsizetype kMostRecent = 12;
const QString kRecent = QStringLiteral("recentFiles");

QString settingsFile() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/vorto/inspector.ini";
}

// Sequences are named by their pattern.
bool isThere(const QString& path) {
  if (QFileInfo::exists(path)) return true;
  try {
    const auto pattern = framePattern(path.toStdString());
    return pattern && existingFrames(*pattern).count() > 0;
  } catch (const Failure&) {
    return false;
  }
}

}  // namespace

Preferences::Preferences(bool isKept)
    : settings_(isKept ? std::make_unique<QSettings>(settingsFile(), QSettings::IniFormat) : nullptr) {}

QVariant Preferences::value(const QString& name) const {
  return settings_ ? settings_->value(name) : values_.value(name);
}

void Preferences::setValue(const QString& name, const QVariant& value) {
  settings_ ? settings_->setValue(name, value) : static_cast<void>(values_.insert(name, value));
}

QStringList Preferences::recentFiles() const {
  QStringList files;
  for (const QString& path : value(kRecent).toStringList()) {
    if (files.size() < kMostRecent && !path.isEmpty() && isThere(path)) files.append(path);
  }
  return files;
}

void Preferences::noteFile(const QString& path) {
  QStringList files = value(kRecent).toStringList();
  const QString whole = QFileInfo(path).absoluteFilePath();
  files.removeAll(whole);
  files.prepend(whole);
  setValue(kRecent, QStringList(files.mid(0, kMostRecent)));
}

void Preferences::forgetRecentFiles() {
  setValue(kRecent, QStringList());
}

}  // namespace host
