// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QTimer>
#include <functional>

namespace host {

// A call that many may want: it runs once, when the events that are waiting have been handled. There is never more
// than one pending, however fast the requests come and however long the call takes.
class CoalescedCall {
 public:
  explicit CoalescedCall(std::function<void()> call);

  void request();
  bool isPending() const { return timer_.isActive(); }
  void runNow();  // fulfils a pending request too
  void cancel() { timer_.stop(); }

 private:
  const std::function<void()> call_;
  QTimer timer_;
};

}  // namespace host
