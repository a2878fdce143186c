// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Bindings/Frei0r/In/Wire.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace vorto::frei0r {

// What a foreign plug-in says of itself, with the numbers that frei0r.h gives kinds and color models. Texts are UTF-8
// on one line, whatever the plug-in gave; numbers are finite.

enum class ForeignKind : std::uint8_t { Filter, Source, Mixer2, Mixer3 };
enum class ColorModel : std::uint8_t { BGRA, RGBA, Packed };
enum class ParameterKind : std::uint8_t { Boolean, Number, Color, Position, Text };

// A value of any kind: a boolean is 0 or 1 in numbers[0], a number in numbers[0], a position x and y, a color red,
// green and blue.
struct ParameterValue {
  std::array<double, 3> numbers{};
  std::string text;
  bool operator==(const ParameterValue&) const = default;
};

struct ForeignParameter {
  std::string name;
  std::string explanation;
  ParameterKind kind = ParameterKind::Number;
  ParameterValue initial;  // of a new instance
};

struct ForeignEffect {
  std::string name;
  std::string author;
  std::string explanation;
  ForeignKind kind = ForeignKind::Filter;
  ColorModel colors = ColorModel::RGBA;
  std::int32_t majorVersion = 0;
  std::int32_t minorVersion = 0;
  std::vector<ForeignParameter> parameters;

  unsigned inputCount() const {
    return kind == ForeignKind::Source ? 0 : kind == ForeignKind::Filter ? 1 : imageCount();
  }

 private:
  unsigned imageCount() const { return kind == ForeignKind::Mixer3 ? 3 : 2; }
};

inline constexpr std::uint32_t kMostParameters = 1000;
inline constexpr std::size_t kLongestText = 4096;  // of names and explanations, in bytes

// What the program that loaded a plug-in reports: its description, or why it is none.
struct Report {
  std::optional<ForeignEffect> effect;
  std::string reason;  // empty with an effect
};

Bytes bytesOf(const Report& report);
// Nothing for bytes that are no report: another version's, cut short, or changed.
std::optional<Report> reportOf(std::span<const std::uint8_t> bytes);

void write(WireWriter& writer, const ParameterValue& value);
ParameterValue readParameterValue(WireReader& reader);

// A sum over bytes that tells whether they have changed by accident.
std::uint64_t checksum(std::span<const std::uint8_t> bytes);

}  // namespace vorto::frei0r
