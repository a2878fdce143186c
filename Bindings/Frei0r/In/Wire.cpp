// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/In/Wire.h"

namespace vorto::frei0r {

void WireWriter::append(const void* data, std::size_t size) {
  if (size == 0) return;
  const std::size_t end = bytes_.size();
  bytes_.resize(end + size);
  std::memcpy(bytes_.data() + end, data, size);
}

}  // namespace vorto::frei0r
