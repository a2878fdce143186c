// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <string_view>

// A fresh folder that is removed with all that is in it.
class TestFolder {
 public:
  TestFolder();
  ~TestFolder();
  TestFolder(const TestFolder&) = delete;
  TestFolder& operator=(const TestFolder&) = delete;

  const std::string& path() const { return path_; }
  // Writes a file, with the folders above it; answers its path.
  std::string write(const std::string& name, std::string_view contents) const;
  // Makes a bundle of a test plug-in's binary, with an Info.plist that names it; answers the bundle's path.
  std::string writeBundle(const std::string& bundle, const std::string& plugIn) const;

 private:
  std::string path_;
};

// The binary of a test plug-in, by the name of its source.
std::string testPlugIn(const std::string& plugIn);
std::string infoPlist(std::string_view executable);
