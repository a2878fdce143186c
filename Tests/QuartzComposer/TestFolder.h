// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Tests/Support/ChildProcess.h"

// The binary of a test plug-in, by its name.
inline std::string testPlugIn(const std::string& plugIn) {
  return std::string(TEST_PLUGIN_FOLDER) + "/" + plugIn + ".so";
}

inline std::string infoPlist(const std::string& executable) {
  return "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key><string>org.vorto.test</string>"
         "<key>CFBundleExecutable</key><string>" +
         executable + "</string></dict></plist>\n";
}

inline std::string contentsOf(const std::string& path) {
  std::ostringstream contents;
  contents << std::ifstream(path, std::ios::binary).rdbuf();
  return contents.str();
}

// A fresh folder in which plug-ins and compositions are put.
class TestFolder : public TemporaryFolder {
 public:
  // Makes a bundle of a test plug-in's binary, with an Info.plist that names it; returns the bundle's path.
  std::string writeBundle(const std::string& bundle, const std::string& plugIn) const {
    write(bundle + "/Contents/Info.plist", infoPlist("Program"));
    std::filesystem::create_directories(path(bundle) + "/Contents/Linux");
    std::filesystem::copy_file(testPlugIn(plugIn), path(bundle) + "/Contents/Linux/Program");
    return path(bundle);
  }
};
