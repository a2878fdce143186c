// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCHash128.h"

#include "TarnCore/TCString.h"
#include "TarnCore/kernels/MD5.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

constexpr std::uint32_t kBlockBytes = 64;

// The value of a hexadecimal digit; -1 for anything else. Independent of the locale.
int digitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

VortoHash128::VortoHash128(const unsigned char* data, std::uint32_t length) {
  addData(data, length);
}

VortoHash128::VortoHash128(const VortoString& text) {
  const std::unique_ptr<char, decltype(&std::free)> characters(text.createCStr(), &std::free);
  if (!characters) return;
  std::uint32_t parsed[4] = {0, 0, 0, 0};
  for (int i = 0; i < 32; ++i) {
    const int value = digitValue(characters.get()[i]);
    if (value < 0) return;  // the terminating zero of a short text ends up here, too
    parsed[i / 8] = parsed[i / 8] * 16 + static_cast<std::uint32_t>(value);
  }
  std::memcpy(words, parsed, sizeof words);
}

void VortoHash128::startIfEmpty() {
  if (*this != VortoHash128()) return;
  words[0] = 0x67452301;
  words[1] = 0xEFCDAB89;
  words[2] = 0x98BADCFE;
  words[3] = 0x10325476;
}

void VortoHash128::addData(const unsigned char* data, std::uint32_t length) {
  if (data == nullptr || length == 0) return;
  startIfEmpty();
  const std::uint32_t whole = length / kBlockBytes;
  vorto::kernels::md5Blocks(words, data, whole);
  const std::uint32_t rest = length % kBlockBytes;
  if (rest == 0) return;
  unsigned char block[kBlockBytes] = {};
  std::memcpy(block, data + std::size_t{whole} * kBlockBytes, rest);
  block[rest] = 0x80;
  vorto::kernels::md5Blocks(words, block, 1);
}

void VortoHash128::transform(const std::uint32_t* block) {
  unsigned char bytes[kBlockBytes];
  for (std::uint32_t i = 0; i < kBlockBytes; ++i) bytes[i] = static_cast<unsigned char>(block[i / 4] >> (8 * (i % 4)));
  vorto::kernels::md5Blocks(words, bytes, 1);
}

VortoHash128& VortoHash128::operator+=(const VortoHash128& other) {
  std::uint32_t block[16] = {other.words[0], other.words[1], other.words[2], other.words[3], 0x80000000};
  startIfEmpty();
  transform(block);
  return *this;
}

VortoString VortoHash128::getString() const {
  char text[33];
  std::snprintf(text, sizeof text, "%08x%08x%08x%08x", words[0], words[1], words[2], words[3]);
  return VortoString(text);
}
