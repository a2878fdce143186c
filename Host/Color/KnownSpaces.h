// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Color/ColorSpace.h"

#include <optional>
#include <span>
#include <string>

namespace host {

// What is known of a space without any library.
struct KnownSpaceFacts {
  KnownSpace space;
  const char* name;
  // How else it is called on command lines, in files and in configurations; in the order in which a configuration is
  // searched.
  std::span<const char* const> aliases;
  Primaries primaries;
  TransferCurve curve;
  std::optional<CodePoints> codePoints;  // of ITU-T H.273
  const char* interopId;                 // what an EXR file's colorInteropID calls it; null where there is no such name
};

std::span<const KnownSpaceFacts> knownSpaces();
const KnownSpaceFacts& factsOf(KnownSpace space);

// By its name or an alias, in any case.
std::optional<KnownSpace> knownSpaceNamed(const std::string& name);

// With primaries within 0.001, and that curve.
std::optional<KnownSpace> knownSpaceWith(const Primaries& primaries, const TransferCurve& curve);

// "sRGB, Linear Rec.709, ..."
std::string knownSpaceList();

bool equalIgnoringCase(const std::string& a, const std::string& b);  // of ASCII letters

}  // namespace host
