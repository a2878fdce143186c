// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/Exr/ExrBlocks.h"

#include <libdeflate.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace host::exr {

// The samples of a block, as 16-bit words: a half is one, a float or an integer two, the lower one first.
class Words {
 public:
  Words() = default;
  static Words inOrder(const std::uint8_t* bytes) { return {bytes, nullptr}; }
  static Words sorted(const std::uint8_t* bytes, std::size_t count) { return {bytes, bytes + count / 2}; }

  void copy(std::size_t first, std::size_t count, std::uint16_t* words) const;

 private:
  Words(const std::uint8_t* even, const std::uint8_t* odd) : even_(even), odd_(odd) {}

  const std::uint8_t* even_ = nullptr;
  const std::uint8_t* odd_ = nullptr;  // null where bytes are in order
};

// Uncompresses the blocks of one part, one after the other in the same memory.
class Decoder {
 public:
  explicit Decoder(const Part& part);

  // What it returns is good until the next call. False when the block is damaged, or holds less or more than it should.
  bool decode(const Block& block, Words* words, std::string* reason);

 private:
  bool inflate(const Block& block);

  const Part& part_;
  std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)> inflater_;
  std::vector<std::uint8_t> bytes_;
};

struct Method {
  std::uint8_t compression = kZip;
  int level = -1;  // 0 to 12 where bytes are deflated, or the library's own of kDwaa and kDwab; -1: the default
};

// Compresses blocks of rows.
class Encoder {
 public:
  Encoder(const Method& method, const std::vector<Channel>& channels);

  // Returns what is stored, which is good until the next call; nothing, with the cause, when it fails. `samples` are in
  // the order in which files hold them, as many as fill the box.
  std::span<const std::uint8_t> encode(const Box& box, std::span<const std::uint16_t> samples, std::string* reason);

 private:
  std::size_t compress(std::span<const std::uint16_t> samples, std::span<std::uint8_t> stored);

  Method method_;
  const std::vector<Channel>& channels_;
  std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> deflater_;
  std::vector<std::uint8_t> sorted_;
  std::vector<std::uint8_t> stored_;
};

}  // namespace host::exr
