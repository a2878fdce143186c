// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/General/PortableAnymap.h"

#include "Platform/Foundation/NSReason.h"

#include <algorithm>
#include <bit>
#include <string>
#include <vector>

namespace host {
namespace {

std::string headerOf(const WriteRequest& request) {
  const bool gray = isGray(request.channels);
  const std::string size = std::to_string(request.width) + " " + std::to_string(request.height) + "\n";
  if (request.format == FileFormat::Pfm) {
    return std::string(gray ? "Pf\n" : "PF\n") + size +
           (std::endian::native == std::endian::little ? "-1.0\n" : "1.0\n");
  }
  return std::string(gray ? "P5\n" : "P6\n") + size + (request.sample == SampleType::UInt8 ? "255\n" : "65535\n");
}

void putHighByteFirst(std::vector<std::uint8_t>& row) {
  if (std::endian::native == std::endian::big) return;
  for (std::size_t i = 0; i + 1 < row.size(); i += 2) std::swap(row[i], row[i + 1]);
}

}  // namespace

bool isPortableAnymap(FileFormat format) {
  return format == FileFormat::Ppm || format == FileFormat::Pnm || format == FileFormat::Pfm;
}

bool writePortableAnymap(const WriteRequest& request, PixelRows& rows, OutputBytes& output, std::string* reason) {
  const std::string header = headerOf(request);
  const std::size_t size = channelCount(request.channels) * bytesPerSample(request.sample) * request.width;
  std::vector<std::uint8_t> row(header.begin(), header.end());
  bool written = output.write(0, row);
  row.resize(size);
  for (std::uint32_t y = 0; y < request.height && written; ++y) {
    const auto* const samples = reinterpret_cast<const std::uint8_t*>(rows.row(y));
    std::copy_n(samples, size, row.begin());
    if (request.sample == SampleType::UInt16) putHighByteFirst(row);
    const std::uint32_t place = request.format == FileFormat::Pfm ? request.height - 1 - y : y;
    written = output.write(header.size() + std::uint64_t{place} * size, row);
  }
  return written || NSRefuse(reason, "not all of it could be written");
}

}  // namespace host
