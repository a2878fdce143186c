// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/FileMetadata.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

namespace host {

// Puts the parts of a message one after another, in the machine's byte order: both ends run on one machine.
class MessageWriter {
 public:
  template <class Value>
  requires std::is_arithmetic_v<Value> || std::is_enum_v<Value>
  void value(Value value) { append(&value, sizeof value); }
  void text(std::string_view text);
  void bytes(std::span<const std::uint8_t> bytes);
  void append(std::span<const std::uint8_t> bytes) { append(bytes.data(), bytes.size()); }  // without their number
  const Bytes& message() const { return message_; }

 private:
  void append(const void* data, std::size_t size);
  Bytes message_;
};

// Takes them out again. Throws Failure for a message that ends early. The bytes must outlive it.
class MessageReader {
 public:
  explicit MessageReader(std::span<const std::uint8_t> message) : rest_(message) {}
  template <class Value>
  requires std::is_arithmetic_v<Value> || std::is_enum_v<Value> Value value() {
    Value result;
    std::memcpy(&result, taken(sizeof result), sizeof result);
    return result;
  }
  std::string text();
  Bytes bytes();
  std::span<const std::uint8_t> view();  // the same without a copy
  bool isAtEnd() const { return rest_.empty(); }

 private:
  const std::uint8_t* taken(std::size_t size);
  std::span<const std::uint8_t> rest_;
};

// One end of a connection between two processes that takes whole messages. Owns its descriptor.
class MessageSocket {
 public:
  MessageSocket() = default;
  explicit MessageSocket(int descriptor) : descriptor_(descriptor) {}
  MessageSocket(MessageSocket&& other) noexcept;
  MessageSocket& operator=(MessageSocket&& other) noexcept;
  ~MessageSocket();

  int descriptor() const { return descriptor_; }  // readable when something can be received; -1: not connected

  // How a message goes through: behind its length.
  static Bytes framed(std::span<const std::uint8_t> message);
  // False when the other end is gone.
  bool send(std::span<const std::uint8_t> message);

  enum class Received { Message, Nothing, End };
  // Waits for a whole message as long as `patience`, 0 for what is there already. End when the other end is gone or
  // sends what is no message.
  Received receive(Bytes* message, std::chrono::milliseconds patience);
  // Waits without limit; false at the end.
  bool receive(Bytes* message);

 private:
  std::size_t missing();
  int descriptor_ = -1;
  Bytes pending_;  // what there is of the next message
  bool isBroken_ = false;
};

}  // namespace host
