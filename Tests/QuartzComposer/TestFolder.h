// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Tests/Support/ChildProcess.h"

#include <string>
#include <string_view>

// A fresh folder in which plug-ins and compositions are put.
class TestFolder : public TemporaryFolder {
 public:
  // Writes a file, with the folders above it; returns its path.
  std::string write(const std::string& name, std::string_view contents) const;
  // Makes a bundle of a test plug-in's binary, with an Info.plist that names it; returns the bundle's path.
  std::string writeBundle(const std::string& bundle, const std::string& plugIn) const;
};

// The binary of a test plug-in, by its name.
std::string testPlugIn(const std::string& plugIn);
std::string contentsOf(const std::string& path);
std::string infoPlist(std::string_view executable);
