// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Rendering/FrameTimes.h"

#include <charconv>
#include <cmath>
#include <numeric>
#include <string_view>

namespace host {
namespace {

// Plain decimals without sign: "12", "0.5".
std::optional<double> parsedDecimal(std::string_view text) {
  if (text.empty() || text.find_first_not_of("0123456789.") != std::string_view::npos) return std::nullopt;
  double value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec != std::errc() || result.ptr != text.data() + text.size()) return std::nullopt;
  return value;
}

std::optional<Rational> reduced(double numerator, double denominator) {
  constexpr double most = 2e9;
  if (!(numerator >= 1 && numerator <= most && denominator >= 1 && denominator <= most)) return std::nullopt;
  if (numerator / denominator > 1e6 || numerator / denominator < 1e-3) return std::nullopt;
  const auto above = static_cast<std::int32_t>(numerator);
  const auto below = static_cast<std::uint32_t>(denominator);
  const std::uint32_t common = std::gcd(static_cast<std::uint32_t>(above), below);
  return Rational{static_cast<std::int32_t>(static_cast<std::uint32_t>(above) / common), below / common};
}

std::optional<Rational> fractionOf(double rate) {
  if (std::abs(rate - std::round(rate)) < 1e-9) return reduced(std::round(rate), 1);
  const double whole = std::round(rate * 1.001);
  const bool isOfNtsc = whole >= 15 && std::abs(rate * 1.001 / whole - 1) < 2e-4;
  if (isOfNtsc) return reduced(whole * 1000, 1001);
  if (rate < 1e-3) return std::nullopt;
  return reduced(std::round(rate * 1000), 1000);
}

}  // namespace

std::optional<Rational> parsedFrameRate(const std::string& text) {
  const std::size_t slash = text.find('/');
  const auto first = parsedDecimal(std::string_view(text).substr(0, slash));
  if (!first) return std::nullopt;
  if (slash == std::string::npos) return fractionOf(*first);
  const auto second = parsedDecimal(std::string_view(text).substr(slash + 1));
  const bool isWhole = second && *first == std::floor(*first) && *second == std::floor(*second);
  return isWhole ? reduced(*first, *second) : std::nullopt;
}

std::optional<double> parsedSeconds(const std::string& text) {
  double seconds = 0;
  std::string_view rest = text;
  for (int part = 0; part < 3; ++part) {
    const std::size_t colon = rest.find(':');
    const auto value = parsedDecimal(rest.substr(0, colon));
    const bool isLast = colon == std::string_view::npos;
    if (!value || (!isLast && *value != std::floor(*value)) || (part > 0 && *value >= 60)) return std::nullopt;
    seconds = seconds * 60 + *value;
    if (isLast) return seconds;
    rest.remove_prefix(colon + 1);
  }
  return std::nullopt;
}

double timeForEffect(EffectKind kind, std::uint64_t index, std::uint64_t count, double secondsSinceFirst) {
  if (kind != EffectKind::Transition) return secondsSinceFirst;
  return count > 1 ? static_cast<double>(index) / static_cast<double>(count - 1) : 0;
}

}  // namespace host
