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
// Before a binary is loaded for the first time, and whenever it has changed, a program of its own loads it and
// registers its nodes, with standard streams that lead nowhere; one that ends that program (a constructor of a static
// object that throws does) or keeps it for five seconds is refused.
inline constexpr std::uint32_t QCPlugInInterfaceVersion = 1;

// What a binary says of itself.
struct QCPlugInDescription {
  std::uint32_t interfaceVersion;
  // Called once, with the manager that is to know the nodes.
  void (*registerNodes)(GFNodeManager& manager);
};

// The one symbol that a binary exports; QC_PLUGIN_ENTRY defines it.
extern "C" TARN_EXPORT const QCPlugInDescription* QCPlugInDescribe();

// Defines the entry point of a plug-in.
#define QC_PLUGIN_ENTRY(registerNodesFunction)                                                     \
  const QCPlugInDescription* QCPlugInDescribe() {                                                  \
    static const QCPlugInDescription description{QCPlugInInterfaceVersion, registerNodesFunction}; \
    return &description;                                                                           \
  }
