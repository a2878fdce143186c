// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/QuartzComposer/TestFolder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace fs = std::filesystem;

TestFolder::TestFolder() {
  const char* base = std::getenv("TMPDIR");
  path_ = std::string(base && *base ? base : "/tmp") + "/vorto-test-XXXXXX";
  if (!mkdtemp(path_.data())) {
    throw std::runtime_error("no temporary folder can be made");
  }
}

TestFolder::~TestFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::string TestFolder::write(const std::string& name, std::string_view contents) const {
  const fs::path path = fs::path(path_) / name;
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary).write(contents.data(), static_cast<std::streamsize>(contents.size()));
  return path.string();
}

std::string TestFolder::writeBundle(const std::string& bundle, const std::string& plugIn) const {
  write(bundle + "/Contents/Info.plist", infoPlist("Program"));
  const fs::path bundlePath = fs::path(path_) / bundle;
  fs::create_directories(bundlePath / "Contents/Linux");
  fs::copy_file(testPlugIn(plugIn), bundlePath / "Contents/Linux/Program");
  return bundlePath.string();
}

std::string testPlugIn(const std::string& plugIn) {
  return std::string(TEST_PLUGIN_FOLDER) + "/" + plugIn + ".so";
}

std::string infoPlist(std::string_view executable) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
         "<key>CFBundleIdentifier</key><string>org.vorto.test</string>"
         "<key>CFBundleExecutable</key><string>" +
         std::string(executable) + "</string></dict></plist>\n";
}
