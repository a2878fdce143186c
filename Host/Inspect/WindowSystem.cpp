// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/WindowSystem.h"

#include "Host/Messages/Failure.h"
#include "Host/Messages/Utf8.h"

#include <unistd.h>
#include <QString>
#include <QtGlobal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace host {
namespace {

bool isSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value && *value;
}

// The toolkit would abort where it finds no display, and says more than people need where it carries on.
// The first warning is the cause: what comes after it only says that nothing works.
void handleMessage(QtMsgType type, const QMessageLogContext& context, const QString& message) {
  static std::string platformWarning;
  const std::string line = printable(message.section('\n', 0, 0).toStdString());
  const bool ofPlatform = context.category && std::string_view(context.category).starts_with("qt.qpa");
  if (type == QtWarningMsg && ofPlatform && platformWarning.empty()) platformWarning = line;
  if (type == QtFatalMsg) {
    const std::string& reason = platformWarning.empty() ? line : platformWarning;
    std::fprintf(stderr, "vorto: the window cannot be opened: %s\n", reason.c_str());
    std::fflush(nullptr);
    _exit(static_cast<int>(ExitCode::Unexpected));
  }
  if (type == QtCriticalMsg) std::fprintf(stderr, "vorto: %s\n", printable(message.toStdString()).c_str());
}

}  // namespace

void prepareWindowSystem(const InspectOptions& options) {
  const bool hasDisplay = isSet("DISPLAY") || isSet("WAYLAND_DISPLAY") || isSet("QT_QPA_PLATFORM");
  if (!hasDisplay && options.screenshot.empty()) {
    throw Failure(ExitCode::Usage,
                  "there is no display to open a window on (neither DISPLAY nor WAYLAND_DISPLAY is set); "
                  "--screenshot FILE works without one");
  }
  if (!hasDisplay) setenv("QT_QPA_PLATFORM", "offscreen", 1);
  if (options.scale) setenv("QT_SCALE_FACTOR", QByteArray::number(*options.scale).constData(), 1);
  qInstallMessageHandler(handleMessage);
}

}  // namespace host
