// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/EditRecorder.h"

#include "Controls/VRTInteractions.h"

#include <utility>

namespace host {

EditRecorder::EditRecorder(ParameterDocument& document, Told told)
    : document_(document), told_(std::move(told)), commit_([this] {
        document_.history().commit();
        told_.historyChanged();
      }) {
  for (QCPort* port : document.parameters()) watch(*port);
}

void EditRecorder::watch(QCPort& port) {
  watches_.push_back(std::make_unique<PortWatch>(port, [this, &port] {
    commit_.request();
    told_.valueChanged(port);
  }));
  auto& center = NSNotificationCenter::defaultCenter();
  observations_.push_back(center.addObserver(kVortoStartInteraction, &port, [this, &port](const NSNotification&) {
    document_.history().startInteraction();
    told_.interactionStarted(port);
  }));
  observations_.push_back(center.addObserver(kVortoEndInteraction, &port, [this](const NSNotification&) {
    document_.history().endInteraction();
    commit_.request();
  }));
}

}  // namespace host
