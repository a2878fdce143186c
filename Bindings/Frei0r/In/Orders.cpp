// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/In/Orders.h"

namespace vorto::frei0r {

Bytes bytesOf(const Order& order) {
  WireWriter writer;
  writer.value(order.size.width);
  writer.value(order.size.height);
  writer.value(order.time);
  writer.value(static_cast<std::uint32_t>(order.changed.size()));
  for (const auto& [index, value] : order.changed) {
    writer.value(index);
    write(writer, value);
  }
  return writer.result();
}

std::optional<Order> orderOf(std::span<const std::uint8_t> bytes) {
  WireReader reader(bytes);
  Order order;
  order.size.width = reader.value<std::uint32_t>();
  order.size.height = reader.value<std::uint32_t>();
  order.time = reader.value<double>();
  const auto count = reader.value<std::uint32_t>();
  for (std::uint32_t i = 0; i < count && !reader.hasFailed(); ++i) {
    const auto index = reader.value<std::uint32_t>();
    order.changed.emplace_back(index, readParameterValue(reader));
  }
  if (!reader.isAtEnd()) return std::nullopt;
  return order;
}

}  // namespace vorto::frei0r
