// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/In/ForeignEffect.h"

#include <cmath>

namespace vorto::frei0r {
namespace {

constexpr std::uint32_t kVersion = 1;

void write(WireWriter& writer, const ForeignEffect& effect) {
  writer.text(effect.name);
  writer.text(effect.author);
  writer.text(effect.explanation);
  writer.value(static_cast<std::uint8_t>(effect.kind));
  writer.value(static_cast<std::uint8_t>(effect.colors));
  writer.value(effect.majorVersion);
  writer.value(effect.minorVersion);
  writer.value(static_cast<std::uint32_t>(effect.parameters.size()));
  for (const ForeignParameter& parameter : effect.parameters) {
    writer.text(parameter.name);
    writer.text(parameter.explanation);
    writer.value(static_cast<std::uint8_t>(parameter.kind));
    frei0r::write(writer, parameter.initial);
  }
}

// An enumerator up to the last one; nothing beyond.
template <class Kind>
std::optional<Kind> readKind(WireReader& reader, Kind last) {
  const auto number = reader.value<std::uint8_t>();
  if (number > static_cast<std::uint8_t>(last)) return std::nullopt;
  return static_cast<Kind>(number);
}

std::optional<ForeignParameter> readParameter(WireReader& reader) {
  ForeignParameter parameter;
  parameter.name = reader.text();
  parameter.explanation = reader.text();
  const auto kind = readKind(reader, ParameterKind::Text);
  if (!kind) return std::nullopt;
  parameter.kind = *kind;
  parameter.initial = readParameterValue(reader);
  for (const double number : parameter.initial.numbers) {
    if (!std::isfinite(number)) return std::nullopt;
  }
  return parameter;
}

std::optional<ForeignEffect> readEffect(WireReader& reader) {
  ForeignEffect effect;
  effect.name = reader.text();
  effect.author = reader.text();
  effect.explanation = reader.text();
  const auto kind = readKind(reader, ForeignKind::Mixer3);
  const auto colors = readKind(reader, ColorModel::Packed);
  if (!kind || !colors) return std::nullopt;
  effect.kind = *kind;
  effect.colors = *colors;
  effect.majorVersion = reader.value<std::int32_t>();
  effect.minorVersion = reader.value<std::int32_t>();
  const auto count = reader.value<std::uint32_t>();
  if (count > kMostParameters) return std::nullopt;
  for (std::uint32_t i = 0; i < count && !reader.hasFailed(); ++i) {
    std::optional<ForeignParameter> parameter = readParameter(reader);
    if (!parameter) return std::nullopt;
    effect.parameters.push_back(std::move(*parameter));
  }
  return effect;
}

}  // namespace

void write(WireWriter& writer, const ParameterValue& value) {
  for (const double number : value.numbers) writer.value(number);
  writer.text(value.text);
}

ParameterValue readParameterValue(WireReader& reader) {
  ParameterValue value;
  for (double& number : value.numbers) number = reader.value<double>();
  value.text = reader.text();
  return value;
}

std::uint64_t checksum(std::span<const std::uint8_t> bytes) {
  std::uint64_t sum = 14695981039346656037ULL;  // FNV-1a
  for (const std::uint8_t byte : bytes) sum = (sum ^ byte) * 1099511628211ULL;
  return sum;
}

Bytes bytesOf(const Report& report) {
  WireWriter body;
  body.text(report.reason);
  if (report.effect) write(body, *report.effect);
  WireWriter writer;
  writer.value(kVersion);
  writer.value(checksum(body.result()));
  writer.bytes(body.result());
  return writer.result();
}

std::optional<Report> reportOf(std::span<const std::uint8_t> bytes) {
  WireReader reader(bytes);
  const auto version = reader.value<std::uint32_t>();
  const auto sum = reader.value<std::uint64_t>();
  const std::span<const std::uint8_t> body = reader.bytes();
  if (version != kVersion || !reader.isAtEnd() || checksum(body) != sum) return std::nullopt;
  WireReader inner(body);
  Report report;
  report.reason = inner.text();
  if (report.reason.empty()) {
    report.effect = readEffect(inner);
    if (!report.effect) return std::nullopt;
  }
  if (!inner.isAtEnd()) return std::nullopt;
  return report;
}

}  // namespace vorto::frei0r
