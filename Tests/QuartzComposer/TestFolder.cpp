// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/QuartzComposer/TestFolder.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

std::string TestFolder::write(const std::string& name, std::string_view contents) const {
  const fs::path file = fs::path(path()) / name;
  fs::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary).write(contents.data(), static_cast<std::streamsize>(contents.size()));
  return file.string();
}

std::string TestFolder::writeBundle(const std::string& bundle, const std::string& plugIn) const {
  write(bundle + "/Contents/Info.plist", infoPlist("Program"));
  const fs::path folder = fs::path(path()) / bundle;
  fs::create_directories(folder / "Contents/Linux");
  fs::copy_file(testPlugIn(plugIn), folder / "Contents/Linux/Program");
  return folder.string();
}

std::string testPlugIn(const std::string& plugIn) {
  return std::string(TEST_PLUGIN_FOLDER) + "/" + plugIn + ".so";
}

std::string contentsOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string infoPlist(std::string_view executable) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
         "<key>CFBundleIdentifier</key><string>org.vorto.test</string>"
         "<key>CFBundleExecutable</key><string>" +
         std::string(executable) + "</string></dict></plist>\n";
}
