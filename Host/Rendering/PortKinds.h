// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <optional>
#include <string>
#include <vector>

class QCPatch;
class QCPort;

namespace host {

enum class PortKind { Number, Boolean, Index, Color, String, Image, Gradient, Levels, Opaque, Object };

PortKind portKindOf(const QCPort& port);
const char* portKindName(PortKind kind);  // "number", "boolean", "index", ...

struct PortRange {
  std::optional<double> minimum;
  std::optional<double> maximum;
};
PortRange portRange(const QCPort& port);
std::string rangeText(const PortRange& range);  // "0 to 1", "at least 1", "at most 8"; empty without limits

std::vector<std::string> portMenu(const QCPort& port);  // empty when the port has none

// An input port by its key, or by its name or its key without a leading "input", both without regard to case and
// spaces. Throws Failure for an unknown name, with those that are known; findInputPort() returns null.
QCPort* findInputPort(const QCPatch& patch, const std::string& name);
QCPort& inputPortNamed(const QCPatch& patch, const std::string& effect, const std::string& name);

}  // namespace host
