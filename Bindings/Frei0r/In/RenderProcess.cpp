// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/In/RenderProcess.h"

#include "Platform/Foundation/NSReason.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>

namespace vorto::frei0r {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kLongest{30};
constexpr std::chrono::seconds kLongestEnd{1};  // of a process that has closed its socket
constexpr std::size_t kLongestAnswer = 4096;

// Whether something can be received before the time is over.
bool waitFor(int socket, std::chrono::milliseconds patience) {
  const auto deadline = Clock::now() + patience;
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd waiting{socket, POLLIN, 0};
    const int ready = ::poll(&waiting, 1, static_cast<int>(std::clamp<std::int64_t>(left, 0, 1000000000)));
    if (ready > 0) return true;
    if (ready == 0 || errno != EINTR) return false;
  }
}

}  // namespace

RenderProcess::RenderProcess(std::string plugIn) : plugIn_(std::move(plugIn)) {}

bool RenderProcess::begin(const FrameSize& size, std::string* reason) {
  if (!process_.isRunning() && !start(reason)) return false;
  size_ = size;
  return frames_->makeRoom(size) ||
         NSRefuse(reason, "there is no memory for the plug-in's frames of " + std::to_string(size.width) + " x " +
                              std::to_string(size.height) + " pixels");
}

bool RenderProcess::start(std::string* reason) {
  auto frames = std::make_unique<SharedFrames>();
  if (!frames->create()) return NSRefuseWithError(reason, "no memory to share with the process of the plug-in");
  int ends[2];
  if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) {
    return NSRefuseWithError(reason, "no socket to the process of the plug-in");
  }
  Descriptor ours(ends[0]);
  const Descriptor theirs(ends[1]);
  if (!process_.start("render", plugIn_, {theirs.number(), frames->descriptor()}, HelperProcess::Complaints::Shown,
                      reason)) {
    return false;
  }
  socket_ = std::move(ours);
  frames_ = std::move(frames);
  sent_.clear();
  return true;
}

bool RenderProcess::render(double time, const std::vector<ParameterValue>& values, std::string* reason) {
  Order order{size_, time, {}};
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i >= sent_.size() || values[i] != sent_[i])
      order.changed.emplace_back(static_cast<std::uint32_t>(i), values[i]);
  }
  if (!send(bytesOf(order), reason) || !receive(reason)) return false;
  sent_ = values;
  return true;
}

bool RenderProcess::send(const Bytes& order, std::string* reason) {
  ssize_t count;
  do {
    count = ::send(socket_.number(), order.data(), order.size(), MSG_NOSIGNAL);
  } while (count < 0 && errno == EINTR);
  if (count >= 0) return true;
  if (errno == EMSGSIZE) return NSRefuse(reason, "the texts for the plug-in " + plugIn_ + " are too long");
  return fail(process_.end(kLongestEnd), reason);
}

bool RenderProcess::receive(std::string* reason) {
  const std::chrono::milliseconds most = patience(kLongest);
  if (!waitFor(socket_.number(), most)) {
    process_.end(std::chrono::milliseconds(0));
    return fail("has not rendered the frame within " + std::to_string((most.count() + 500) / 1000) + " s", reason);
  }
  char answer[kLongestAnswer];
  const ssize_t count = ::recv(socket_.number(), answer, sizeof answer, 0);
  if (count <= 0) return fail(process_.end(kLongestEnd) + " while it rendered", reason);
  const std::string refusal(answer, static_cast<std::size_t>(count) - 1);
  if (refusal.empty()) return true;
  process_.end(std::chrono::milliseconds(0));
  return NSRefuse(reason, "the frei0r plug-in " + plugIn_ + ": " + refusal);
}

// The process is gone already.
bool RenderProcess::fail(const std::string& what, std::string* reason) {
  socket_.close();
  return NSRefuse(reason, "the frei0r plug-in " + plugIn_ + ' ' + what);
}

}  // namespace vorto::frei0r
