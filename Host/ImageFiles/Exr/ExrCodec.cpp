// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Exr/ExrCodec.h"

#include "Host/ImageFiles/Exr/ByteOrder.h"
#include "Host/ImageFiles/Exr/DwaBlock.h"
#include "Host/ImageFiles/Exr/ExrMethods.h"
#include "Host/ImageFiles/Exr/RunLengths.h"
#include "Platform/Foundation/NSReason.h"

#include <cstring>
#include <new>

namespace host::exr {
namespace {

constexpr int kDefaultLevel = 4;

bool isDeflated(std::uint8_t compression) {
  return compression == kZip || compression == kZipRow;
}

libdeflate_decompressor* inflaterFor(std::uint8_t compression) {
  return isDeflated(compression) ? libdeflate_alloc_decompressor() : nullptr;
}
libdeflate_compressor* deflaterFor(const Method& method) {
  return isDeflated(method.compression) ? libdeflate_alloc_compressor(method.level < 0 ? kDefaultLevel : method.level)
                                        : nullptr;
}

}  // namespace

void Words::copy(std::size_t first, std::size_t count, std::uint16_t* words) const {
  if (odd_) {
    mergeBytes(even_ + first, odd_ + first, count, words);
  } else {
    std::memcpy(words, even_ + first * 2, count * 2);
  }
}

Decoder::Decoder(const Part& part)
    : part_(part), inflater_(inflaterFor(part.compression), libdeflate_free_decompressor) {
  if (isDeflated(part.compression) && !inflater_) throw std::bad_alloc();
}

bool Decoder::inflate(const Block& block) {
  return libdeflate_zlib_decompress(inflater_.get(), block.stored.data(), block.stored.size(), bytes_.data(),
                                    block.size, nullptr) == LIBDEFLATE_SUCCESS;
}

bool Decoder::decode(const Block& block, Words* words, std::string* reason) {
  if (block.stored.size() == block.size) {
    *words = Words::inOrder(block.stored.data());
    return true;
  }
  if (bytes_.size() < block.size) bytes_.resize(block.size);
  if (!isDeflated(part_.compression) && part_.compression != kRunLengths) {
    const bool isDwa = part_.compression == kDwaa || part_.compression == kDwab;
    if (isDwa && !isDwaBlockWhole(block.stored, part_.channels, block.box.width(), block.box.height())) {
      return NSRefuse(reason, kDamaged);
    }
    Methods* const library = methods(reason);
    const Methods::Job job{part_.compression, &part_.channels, block.box.width(), block.box.height()};
    *words = Words::inOrder(bytes_.data());
    return library && library->unpack(job, block.stored, std::span(bytes_).first(block.size), reason);
  }
  const bool isWhole = isDeflated(part_.compression)
                           ? inflate(block)
                           : unpackRunLengths(block.stored, std::span(bytes_).first(block.size));
  if (!isWhole) return NSRefuse(reason, kDamaged);
  sumDifferences(bytes_.data(), block.size);
  *words = Words::sorted(bytes_.data(), block.size);
  return true;
}

Encoder::Encoder(const Method& method, const std::vector<Channel>& channels)
    : method_(method), channels_(channels), deflater_(deflaterFor(method), libdeflate_free_compressor) {
  if (isDeflated(method.compression) && !deflater_) throw std::bad_alloc();
}

// Returns 0 when it does not fit.
std::size_t Encoder::compress(std::span<const std::uint16_t> samples, std::span<std::uint8_t> stored) {
  if (method_.compression == kNone) return 0;
  sorted_.resize(samples.size_bytes());
  sortAndSubtract(samples.data(), samples.size(), sorted_.data());
  if (method_.compression == kRunLengths) return packRunLengths(sorted_, stored);
  return libdeflate_zlib_compress(deflater_.get(), sorted_.data(), sorted_.size(), stored.data(), stored.size());
}

std::span<const std::uint8_t> Encoder::encode(const Box& box, std::span<const std::uint16_t> samples,
                                              std::string* reason) {
  const std::span<const std::uint8_t> bytes(reinterpret_cast<const std::uint8_t*>(samples.data()),
                                            samples.size_bytes());
  if (method_.compression > kZip) {
    Methods* const library = methods(reason);
    const Methods::Job job{method_.compression, &channels_, box.width(), box.height(),
                           static_cast<float>(method_.level)};
    if (!library || !library->pack(job, bytes, &stored_, reason)) return {};
    return stored_;
  }
  if (stored_.size() < bytes.size()) stored_.resize(bytes.size());
  const std::size_t size = compress(samples, std::span(stored_).first(bytes.size() - 1));
  return size == 0 ? bytes : std::span<const std::uint8_t>(stored_).first(size);
}

}  // namespace host::exr
