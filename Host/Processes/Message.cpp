// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Processes/Message.h"

#include "Host/Messages/Failure.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits>
#include <utility>

namespace host {
namespace {

using Clock = std::chrono::steady_clock;
using Length = std::uint32_t;

// More than a clip of a week has times.
constexpr Length kLargestMessage = 1u << 29;

bool sendAll(int descriptor, const void* data, std::size_t size) {
  const auto* rest = static_cast<const std::uint8_t*>(data);
  while (size > 0) {
    const ssize_t sent = ::send(descriptor, rest, size, MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return false;
    rest += sent;
    size -= static_cast<std::size_t>(sent);
  }
  return true;
}

// Whether something can be read before the time is over; patience below 0 waits without limit.
bool isReadable(int descriptor, std::chrono::milliseconds patience) {
  const Clock::time_point end = Clock::now() + patience;
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
    constexpr std::int64_t most = std::numeric_limits<int>::max();
    pollfd waiting{descriptor, POLLIN, 0};
    const int found =
        ::poll(&waiting, 1, patience.count() < 0 ? -1 : static_cast<int>(std::clamp<std::int64_t>(left, 0, most)));
    if (found >= 0 || errno != EINTR) return found > 0;
  }
}

}  // namespace

void MessageWriter::append(const void* data, std::size_t size) {
  const auto* bytes = static_cast<const std::uint8_t*>(data);
  message_.insert(message_.end(), bytes, bytes + size);
}

void MessageWriter::text(std::string_view text) {
  value<std::uint64_t>(text.size());
  append(text.data(), text.size());
}

void MessageWriter::bytes(std::span<const std::uint8_t> bytes) {
  value<std::uint64_t>(bytes.size());
  append(bytes.data(), bytes.size());
}

const std::uint8_t* MessageReader::taken(std::size_t size) {
  if (size > rest_.size()) throw Failure(ExitCode::Unexpected, "a helper process sent a message that ends early");
  const std::uint8_t* result = rest_.data();
  rest_ = rest_.subspan(size);
  return result;
}

std::string MessageReader::text() {
  const auto size = value<std::uint64_t>();
  const std::uint8_t* begin = taken(size);
  return {reinterpret_cast<const char*>(begin), size};
}

std::span<const std::uint8_t> MessageReader::view() {
  const auto size = value<std::uint64_t>();
  return {taken(size), size};
}

Bytes MessageReader::bytes() {
  const std::span<const std::uint8_t> bytes = view();
  return {bytes.begin(), bytes.end()};
}

MessageSocket::MessageSocket(MessageSocket&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)),
      pending_(std::move(other.pending_)),
      isBroken_(other.isBroken_) {}

MessageSocket& MessageSocket::operator=(MessageSocket&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  std::swap(pending_, other.pending_);
  std::swap(isBroken_, other.isBroken_);
  return *this;
}

MessageSocket::~MessageSocket() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

Bytes MessageSocket::framed(std::span<const std::uint8_t> message) {
  MessageWriter framed;
  framed.value(static_cast<Length>(message.size()));
  framed.append(message);
  return framed.message();
}

bool MessageSocket::send(std::span<const std::uint8_t> message) {
  const auto length = static_cast<Length>(message.size());
  if (message.size() > kLargestMessage) return false;
  return sendAll(descriptor_, &length, sizeof length) && sendAll(descriptor_, message.data(), message.size());
}

// How many bytes the message that has begun still lacks, as far as is known: its length comes first.
std::size_t MessageSocket::missing() {
  Length length = 0;
  if (pending_.size() < sizeof length) return sizeof length - pending_.size();
  std::memcpy(&length, pending_.data(), sizeof length);
  isBroken_ = length > kLargestMessage;
  return sizeof length + length - pending_.size();
}

MessageSocket::Received MessageSocket::receive(Bytes* message, std::chrono::milliseconds patience) {
  const Clock::time_point end = Clock::now() + patience;
  // Nothing of the message after this one is taken: the descriptor stays readable as long as there is one.
  while (const std::size_t size = missing()) {
    if (isBroken_) return Received::End;
    const bool isEndless = patience.count() < 0;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
    if (!isReadable(descriptor_, isEndless ? patience : std::max(left, std::chrono::milliseconds(0)))) {
      return Received::Nothing;
    }
    std::array<std::uint8_t, 65536> part;
    const ssize_t received = ::recv(descriptor_, part.data(), std::min(size, part.size()), 0);
    if (received < 0 && errno == EINTR) continue;
    if (received <= 0) return Received::End;
    pending_.insert(pending_.end(), part.begin(), part.begin() + received);
  }
  message->assign(pending_.begin() + sizeof(Length), pending_.end());
  pending_.clear();
  return Received::Message;
}

bool MessageSocket::receive(Bytes* message) {
  return receive(message, std::chrono::milliseconds(-1)) == Received::Message;
}

}  // namespace host
