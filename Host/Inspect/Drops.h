// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QMimeData>
#include <QStringList>
#include <QUrl>
#include <string>

namespace host {

// The one local file that is dragged; empty when there is none, or several.
inline std::string droppedFile(const QMimeData& data) {
  const QList<QUrl> urls = data.urls();
  return urls.size() == 1 && urls[0].isLocalFile() ? urls[0].toLocalFile().toStdString() : std::string();
}

// All local files that are dragged.
inline QStringList droppedFiles(const QMimeData& data) {
  QStringList files;
  for (const QUrl& url : data.urls()) {
    if (url.isLocalFile()) files.append(url.toLocalFile());
  }
  return files;
}

}  // namespace host
