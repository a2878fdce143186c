// SPDX-License-Identifier: BSD-3-Clause
// A change of a PNG's bytes makes a wrong checksum, and nothing else is found. So files are changed either in their
// chunks, whose checksums are then made right, or in their rows, which are then stored again.
#include "Host/ImageFiles/Png/Chunks.h"
#include "Host/ImageFiles/Png/Deflate.h"
#include "Host/ImageFiles/Png/DeflateStream.h"
#include "Tests/Fuzz/Host/ImageModuleFuzz.h"

#include <utility>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maximumSize);

namespace {

using host::Bytes;

constexpr std::size_t kLargestRows = 1 << 16;

// The chunks as far as their lengths go.
std::vector<host::PngChunk> chunksOf(std::span<const std::uint8_t> file) {
  std::vector<host::PngChunk> chunks;
  for (std::size_t at = sizeof host::kPngSignature; at + 12 <= file.size();) {
    const std::size_t length = host::pngNumber(&file[at]);
    if (length > file.size() - at - 12) break;
    chunks.push_back({host::pngNumber(&file[at + 4]), file.subspan(at + 8, length)});
    at += length + 12;
  }
  return chunks;
}

// The pixels' stream changed, stored anew.
Bytes withChangedRows(const std::vector<host::PngChunk>& chunks) {
  Bytes stream;
  for (const auto& chunk : chunks) {
    if (chunk.type == host::pngType("IDAT")) stream.insert(stream.end(), chunk.data.begin(), chunk.data.end());
  }
  Bytes rows = host::inflated(stream, kLargestRows);
  const std::size_t size = rows.size();
  rows.resize(size + 64);
  rows.resize(LLVMFuzzerMutate(rows.data(), size, rows.size()));
  host::DeflateStream stored(host::DeflateStream::Method::Stored);
  stored.append(rows);
  stored.finish();
  return {stored.made().begin(), stored.made().end()};
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maximumSize,
                                               unsigned seed) {
  const bool changesRows = seed % 2 == 0;
  if (!changesRows) size = LLVMFuzzerMutate(data, size, maximumSize);
  const auto chunks = chunksOf({data, size});
  if (chunks.empty()) return size;
  Bytes file(std::begin(host::kPngSignature), std::end(host::kPngSignature));
  bool areRowsThere = false;
  for (const auto& chunk : chunks) {
    if (!changesRows || chunk.type != host::pngType("IDAT")) {
      host::appendPngChunk(chunk.type, chunk.data, &file);
    } else if (!std::exchange(areRowsThere, true)) {
      host::appendPngChunk(chunk.type, withChangedRows(chunks), &file);
    }
  }
  if (file.size() > maximumSize) return size;
  std::copy(file.begin(), file.end(), data);
  return file.size();
}
