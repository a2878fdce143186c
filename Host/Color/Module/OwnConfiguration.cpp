// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Color/Module/OwnConfiguration.h"

#include "Host/Color/KnownSpaces.h"
#include "Host/Color/Module/Primaries.h"

#include <charconv>

namespace host {
namespace {

constexpr const char* kHead = R"(ocio_profile_version: 2.1
strictparsing: true
roles:
  default: raw
  scene_linear: Linear Rec.709
file_rules:
  - !<Rule> {name: Default, colorspace: default}
displays:
  none:
    - !<View> {name: Raw, colorspace: raw}
colorspaces:
  - !<ColorSpace>
    name: raw
    isdata: true
)";

// The shortest text that is read as the same number, in any locale.
std::string numberText(double value) {
  char text[32];
  return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

std::string quoted(const std::string& text) {
  return '"' + text + '"';
}

std::string aliasList(const KnownSpaceFacts& facts) {
  std::string list;
  for (const char* alias : facts.aliases) {
    if (equalIgnoringCase(alias, facts.name)) continue;
    list += (list.empty() ? "" : ", ") + quoted(alias);
  }
  return "[" + list + "]";
}

std::string curveText(const TransferCurve& curve) {
  switch (curve.kind) {
    case TransferCurve::Kind::SRgb:
      return "        - !<ExponentWithLinearTransform> {gamma: 2.4, offset: 0.055, style: mirror}\n";
    case TransferCurve::Kind::Power:
      return "        - !<ExponentTransform> {value: " + numberText(curve.exponent) + ", style: mirror}\n";
    case TransferCurve::Kind::Linear:
      break;
  }
  return "";
}

std::string matrixText(const Primaries& primaries) {
  const Primaries& reference = factsOf(KnownSpace::LinearRec709).primaries;
  if (primaries == reference) return "";
  std::string numbers;
  for (const auto& row : matrixBetween(primaries, reference)) {
    for (const double number : row) numbers += numberText(number) + ", ";
    numbers += "0, ";
  }
  return "        - !<MatrixTransform> {matrix: [" + numbers + "0, 0, 0, 1]}\n";
}

std::string spaceText(const KnownSpaceFacts& facts) {
  const bool isLinear = facts.curve.kind == TransferCurve::Kind::Linear;
  std::string text = "  - !<ColorSpace>\n    name: " + quoted(facts.name) + "\n    aliases: " + aliasList(facts) +
                     "\n    encoding: " + (isLinear ? "scene-linear" : "sdr-video") + "\n    bitdepth: 32f\n";
  const std::string steps = curveText(facts.curve) + matrixText(facts.primaries);
  if (!steps.empty()) text += "    to_scene_reference: !<GroupTransform>\n      children:\n" + steps;
  return text;
}

}  // namespace

std::string ownConfiguration() {
  std::string text = kHead;
  for (const KnownSpaceFacts& facts : knownSpaces()) text += spaceText(facts);
  return text;
}

}  // namespace host
