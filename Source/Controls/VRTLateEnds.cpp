// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTLateEnds.h"

#include <QCoreApplication>
#include <deque>
#include <utility>

namespace {

// Never destroyed: views may outlive static objects.
std::deque<std::function<void()>>& waitingEnds() {
  static auto& ends = *new std::deque<std::function<void()>>;
  return ends;
}

}  // namespace

void VRTEndLater(std::function<void()> end) {
  waitingEnds().push_back(std::move(end));
  if (QCoreApplication* application = QCoreApplication::instance()) {
    QMetaObject::invokeMethod(application, &VRTDeliverLateEnds, Qt::QueuedConnection);
  }
}

void VRTDeliverLateEnds() {
  while (!waitingEnds().empty()) {
    const std::function<void()> end = std::move(waitingEnds().front());
    waitingEnds().pop_front();
    end();
  }
}
