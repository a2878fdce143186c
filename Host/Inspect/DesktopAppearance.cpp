// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/DesktopAppearance.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QFileInfo>
#include <QGuiApplication>
#include <QPalette>
#include <utility>

namespace host {
namespace {

constexpr int kPause = 10000;         // milliseconds
constexpr unsigned kPrefersDark = 1;  // of "color-scheme"; 2 is light, 0 neither

// One that is there: asking for another would start one.
bool isBusThere() {
  return !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS") ||
         QFileInfo::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + "/bus");
}

// The older call of the portal wraps the value twice.
QVariant unwrapped(QVariant value) {
  while (value.userType() == qMetaTypeId<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
  return value;
}

}  // namespace

DesktopAppearance::DesktopAppearance(std::function<void()> changed)
    : changed_(std::move(changed)),
      wasDark_(QGuiApplication::palette().color(QPalette::Window).lightness() < 128),
      hasBus_(isBusThere() && QDBusConnection::sessionBus().isConnected()) {
  if (!hasBus_) return;
  timer_.callOnTimeout([this] { read(); });
  timer_.start(kPause);
  QObject::connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
    if (state == Qt::ApplicationActive) read();
  });
  read();
}

void DesktopAppearance::read() {
  QDBusMessage message = QDBusMessage::createMethodCall(
      "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings", "Read");
  message << QStringLiteral("org.freedesktop.appearance") << QStringLiteral("color-scheme");
  auto* answer = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message), this);
  QObject::connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
    answer->deleteLater();
    const QDBusPendingReply<QDBusVariant> reply = *answer;
    if (reply.isError()) {
      timer_.stop();  // there is no portal
      return;
    }
    const unsigned scheme = unwrapped(reply.value().variant()).toUInt();
    const bool was = isDark();
    told_ = scheme == 0 ? std::nullopt : std::optional(scheme == kPrefersDark);
    if (isDark() != was) changed_();
  });
}

}  // namespace host
