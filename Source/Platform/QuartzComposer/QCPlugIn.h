// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/QuartzComposer/GFNodeManager.h"

#include <cstdint>

// What a plug-in bundle NAME.plugin must offer. Layout:
//
//   NAME.plugin/Contents/Info.plist          CFBundleIdentifier, CFBundleExecutable
//   NAME.plugin/Contents/Linux/EXECUTABLE    a shared object that exports QCPlugInDescribe
//   NAME.plugin/Contents/Resources/...       optional
//
// QCPlugInDescribe is called once after the binary is loaded. A bundle whose stated version differs from
// QCPlugInInterfaceVersion is refused before anything else of it is called. registerNodes then registers the bundle's
// nodes; when it throws, all that it registered is taken back. A bundle that was loaded is never unloaded.
//
// The constructors of a plug-in's static objects must not throw: by the rules of the language that ends the process.
inline constexpr std::uint32_t QCPlugInInterfaceVersion = 1;

struct QCPlugInDescription {
  std::uint32_t interfaceVersion;
  void (*registerNodes)(GFNodeManager& manager);
};

extern "C" TARN_EXPORT const QCPlugInDescription* QCPlugInDescribe();

// Defines the entry point of a plug-in.
#define QC_PLUGIN_ENTRY(registerNodesFunction)                                                     \
  const QCPlugInDescription* QCPlugInDescribe() {                                                  \
    static const QCPlugInDescription description{QCPlugInInterfaceVersion, registerNodesFunction}; \
    return &description;                                                                           \
  }
