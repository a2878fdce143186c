// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <memory>
#include <string>
#include <vector>

class PropertyList;
class QCPatch;
class QCPort;

namespace host {

enum class EffectKind { Filter, Transition, Generator, BlendMode };

inline constexpr EffectKind kEffectKinds[] = {EffectKind::Filter, EffectKind::Transition, EffectKind::Generator,
                                              EffectKind::BlendMode};

const char* effectKindKey(EffectKind kind);     // "filter", "transition", "generator", "blendMode"
const char* effectKindPlural(EffectKind kind);  // "Filters", ...

// Loads plug-ins: first the system's folders, then those of VORTO_PLUGIN_PATH (separated by colons), then the one
// beside the program. Broken ones are reported on standard error and skipped. Patches find an execution context. Then
// runs files of Python (Host/Python/PythonFiles.h), which throws Failure.
void loadEffects(const std::vector<std::string>& pythonFiles = {});

// In the order of loading. An effect of several kinds is in several lists.
std::vector<std::string> effectNames(EffectKind kind);

// The names of all kinds, each once.
std::vector<std::string> allEffectNames();

// The effect that a name stands for, as makeEffect() has it. Throws Failure as that does.
std::string knownEffectName(const std::string& name);

// A new instance; a name whose case differs serves where only one effect has it. Throws Failure for a name that is no
// effect's, with the names that are close to it.
std::shared_ptr<QCPatch> makeEffect(const std::string& name);

// What one of effectNames() looks like; null when it cannot be made.
std::shared_ptr<const QCPatch> describedEffect(const std::string& name);

// The kinds of an effect, and the ports that play a role in one of them.
std::vector<EffectKind> effectKindsOf(const QCPatch& patch);
struct EffectRoles {
  std::vector<QCPort*> inputs;  // images in the order in which they are given
  QCPort* time = nullptr;
  QCPort* output = nullptr;
};
EffectRoles effectRoles(const QCPatch& patch, EffectKind kind);

}  // namespace host
