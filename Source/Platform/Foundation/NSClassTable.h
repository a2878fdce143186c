// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSObject.h"
#include "Platform/Visibility.h"

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The class table: what the object runtime's look-up by name is on this platform.
struct NSClass {
  std::string name;
  std::string superclassName;            // empty only for NSObject
  std::function<NSObjectRef()> factory;  // empty for abstract classes
};

// Adds a class; false when the name is taken (the first one stays).
TARN_EXPORT bool NSRegisterClass(NSClass entry);
// The entry of that name, or null. The pointer stays valid for the life of the process.
TARN_EXPORT const NSClass* NSClassFromString(std::string_view name);
// The class, its superclass and so on up to NSObject. An unknown name gives itself and NSObject.
TARN_EXPORT std::vector<std::string> NSClassHierarchy(std::string_view name);

// Registers a class for as long as the library that holds it is loaded: one constant per class in the file that defines
// it. Every class that returns a className() of its own needs one, in order to be archived, made by name, or taken by
// the object ports of its superclasses:
//
//   const NSClassRegistration tintClass("AcmeTint", "VRTGradient", [] { return std::make_shared<AcmeTint>(); });
class NSClassRegistration {
 public:
  NSClassRegistration(const char* name, const char* superclassName, std::function<NSObjectRef()> factory) {
    NSRegisterClass(NSClass{name, superclassName, std::move(factory)});
  }
};
