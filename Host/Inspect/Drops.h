// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QMimeData>
#include <QUrl>
#include <string>

namespace host {

// The one local file that is dragged; empty when there is none, or several.
inline std::string droppedFile(const QMimeData& data) {
  const QList<QUrl> urls = data.urls();
  return urls.size() == 1 && urls[0].isLocalFile() ? urls[0].toLocalFile().toStdString() : std::string();
}

}  // namespace host
