// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Registry/VRTNodeManager.h"
#include "Tests/Effects/Harness.h"
#include "Tests/Support/ChildProcess.h"

// A place with foreign plug-ins under names of the test's own, a cache, and a home folder where there is nothing. The
// environment of this process leads there.
class ForeignPlace {
 public:
  using Names = std::vector<std::string>;

  explicit ForeignPlace(const Names& plugIns = {}) {
    std::filesystem::create_directories(folder_.path("bundle"));
    std::filesystem::create_symlink(VORTO_TEST_PLUGINS "/Frei0r.plugin", folder_.path("bundle/Frei0r.plugin"));
    std::filesystem::create_directories(folder_.path("frei0r"));
    for (const std::string& name : plugIns) add(name, "frei0r/" + name + ".so");
    setenv("HOME", folder_.path("home").c_str(), 1);
    setenv("XDG_CACHE_HOME", folder_.path("cache").c_str(), 1);
    setenv("FREI0R_PATH", path("frei0r").c_str(), 1);
    setenv("VORTO_FREI0R_TIMEOUT", "20", 1);
    setenv("TEST_FOREIGN_LOADS", path("loads").c_str(), 1);
  }

  std::string path(const std::string& name) const { return folder_.path(name); }
  void add(const std::string& plugIn, const std::string& as) const {
    std::filesystem::create_directories(std::filesystem::path(path(as)).parent_path());
    std::filesystem::copy_file(std::string(VORTO_TEST_FOREIGN "/") + plugIn + ".so", path(as));
  }

  // A manager of its own, as a process that starts now has.
  std::shared_ptr<VRTNodeManager> registry() const {
    auto manager = std::make_shared<VRTNodeManager>();
    manager->init();
    manager->loadPlugInsInFolder(path("bundle"), {"plugin"});
    return manager;
  }

  // How often the plug-in Loaded was loaded so far.
  std::size_t loads() const {
    std::error_code error;
    const auto size = std::filesystem::file_size(path("loads"), error);
    return error ? 0 : size;
  }

 private:
  TemporaryFolder folder_;
};

inline Outcome runAt(QCPatch& patch, double time) {
  Outcome outcome{};
  outcome.succeeded = patch.executeAtTime(time, &outcome.reason);
  outcome.image = VRTImage::bitmapOfPort(dynamic_cast<QCImagePort&>(*patch.portForKey("outputImage")));
  return outcome;
}

inline ConstBitmap renderedAt(QCPatch& patch, double time) {
  Outcome outcome = runAt(patch, time);
  if (!outcome.succeeded || !outcome.image) throw std::runtime_error("no image: " + outcome.reason);
  return outcome.image;
}

inline void setText(QCPatch& patch, const std::string& key, const std::string& text) {
  dynamic_cast<QCStringPort&>(*patch.portForKey(key)).setStringValue(text);
}
