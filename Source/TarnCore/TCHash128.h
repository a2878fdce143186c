// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <cstdint>

class VortoString;

// A 128-bit fingerprint, built on the MD5 block transform (RFC 1321). It tells whether content has changed; it is not a
// message digest and not for security.
//
// Departures from MD5, which stored fingerprints rely on: no length is ever added, every addData() call pads its own
// tail (none when its length is a multiple of 64), and the text form prints the four state words as numbers.
//
// All words zero means empty: nothing added yet.
class TARN_EXPORT VortoHash128 {
 public:
  VortoHash128() = default;
  VortoHash128(const unsigned char* data, std::uint32_t length);  // addData() on an empty fingerprint
  // The fingerprint of 32 hexadecimal digits, as getString() writes them; what follows them is ignored. Empty when any
  // of the 32 is not a digit.
  explicit VortoHash128(const VortoString& text);

  // Folds `length` bytes in; an empty fingerprint starts from MD5's initial state. No bytes, or null, change nothing:
  // the fingerprint of no data is empty.
  void addData(const unsigned char* data, std::uint32_t length);
  // One compression of a block of sixteen words, the first byte of the block lowest in the first word.
  void transform(const std::uint32_t* block);
  // Folds another fingerprint in.
  VortoHash128& operator+=(const VortoHash128& other);

  VortoString getString() const;  // 32 lowercase digits
  bool operator==(const VortoHash128& other) const = default;

  std::uint32_t words[4] = {0, 0, 0, 0};  // the MD5 state A, B, C, D

 private:
  void startIfEmpty();
};
