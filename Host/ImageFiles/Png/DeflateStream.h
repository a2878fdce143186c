// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/Png/DeflateBlock.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace host {

// Makes a zlib stream of bytes that come piece by piece, in little memory. It is made for filtered rows of photographs:
// hardly anything in them stands there twice, and short codes for small differences are what makes them small; so it
// looks for repeated bytes briefly where it finds none, and takes only those that cost less than their own codes.
class DeflateStream {
 public:
  enum class Method { Stored, Compressed };
  explicit DeflateStream(Method method);

  void append(std::span<const std::uint8_t> bytes);
  void finish();  // once, after the last

  // What has been made since it was cleared.
  std::span<const std::uint8_t> made() const { return out_.written(); }
  void clearMade() { out_.clear(); }

 private:
  class Matcher;

  void writeBlock(bool isLast);
  void findSteps(std::span<const std::uint8_t> block);
  void estimateMatches();

  static constexpr std::size_t kHashBits = 14;

  Method method_;
  std::uint32_t checksum_ = 1;
  std::uint32_t start_ = 0;           // how many bytes went before those in window_, modulo 2^32
  std::vector<std::uint8_t> window_;  // what distances reach back to, then the block
  std::size_t history_ = 0;           // bytes in front of the block
  std::vector<DeflateStep> steps_;
  std::vector<std::array<std::uint32_t, 2>> latest_;  // where bytes with some hash stood last, and before that
  std::uint32_t matchSymbolBits_ = 10;                // of a match, estimated
  BitWriter out_;
};

}  // namespace host
