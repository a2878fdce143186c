// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/CoalescedCall.h"

#include <utility>

namespace host {

CoalescedCall::CoalescedCall(std::function<void()> call) : call_(std::move(call)) {
  timer_.setSingleShot(true);
  timer_.setInterval(0);
  timer_.callOnTimeout([this] { call_(); });
}

void CoalescedCall::request() {
  if (!timer_.isActive()) timer_.start();
}

void CoalescedCall::runNow() {
  timer_.stop();
  call_();
}

}  // namespace host
