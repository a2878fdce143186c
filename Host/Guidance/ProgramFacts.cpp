// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Guidance/ProgramFacts.h"

namespace host {
namespace {

constexpr Fact kExitCodes[] = {
    {"0", "done"},
    {"1", "unexpected"},
    {"2", "the command line does not fit"},
    {"3", "a file cannot be read"},
    {"4", "a file cannot be written"},
    {"5", "the effect cannot render"},
};

constexpr Fact kEnvironment[] = {
    {"HOME", "The folder that ~ stands for."},
    {"OCIO", "A configuration of OpenColorIO, whose color spaces options may then name."},
    {"VORTO_PLUGIN_PATH", "Folders with effects, separated by colons, beside those of the system."},
    {"VORTO_SIMD",
     "Which form the loops over pixels run in: scalar, or at most sse4, avx2 or avx512. Results are the same."},
    {"XDG_CACHE_HOME", "The folder that holds vorto/plug-ins; ~/.cache when it is not set."},
    {"XDG_CONFIG_HOME", "The folder that holds vorto/inspector.ini; ~/.config when it is not set."},
    {"XDG_DATA_HOME", "The folder that holds vorto/presets; ~/.local/share when it is not set."},
};

constexpr Fact kFiles[] = {
    {"/Library/Application Support/Hollin/Internal Plug-Ins/Vorto", "Effects of the machine: .plugin and .qtz."},
    {"/Library/Plug-Ins/Vorto", "The same, for what comes from elsewhere."},
    {"~/Library/Plug-Ins/Vorto", "Your own effects."},
    {"~/.local/share/vorto/presets", "Your own presets: folders gradients and levels, and the file favorites."},
    {"~/.config/vorto/inspector.ini", "What you chose in the inspector."},
    {"~/.cache/vorto/plug-ins", "Which effects could be loaded when they were tried. It may be deleted."},
};

}  // namespace

std::span<const Fact> exitCodes() {
  return kExitCodes;
}

std::span<const Fact> environmentVariables() {
  return kEnvironment;
}

std::span<const Fact> knownFolders() {
  return kFiles;
}

std::string exitCodesText() {
  std::string text;
  for (const Fact& code : kExitCodes) text += std::string(text.empty() ? "" : "; ") + code.word + " " + code.meaning;
  return text;
}

}  // namespace host
