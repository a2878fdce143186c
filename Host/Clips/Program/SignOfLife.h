// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Processes/Message.h"

#include <chrono>
#include <utility>

namespace host {

// Tells the other end twice a second that work goes on, so that long work is told from none.
class SignOfLife {
 public:
  // Sends `message`. The socket outlives it.
  SignOfLife(MessageSocket& socket, MessageWriter message) : socket_(socket), message_(std::move(message)) {}

  // Called as often as work goes on.
  void goesOn() {
    const Clock::time_point now = Clock::now();
    if (now - last_ < std::chrono::milliseconds(500)) return;
    last_ = now;
    socket_.send(message_.message());
  }

 private:
  using Clock = std::chrono::steady_clock;
  MessageSocket& socket_;
  MessageWriter message_;
  Clock::time_point last_ = Clock::now();
};

}  // namespace host
