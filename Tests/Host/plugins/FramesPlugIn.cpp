// SPDX-License-Identifier: BSD-3-Clause
// Generators for tests of many frames. Both give one gray pixel.
//   Frames          gray 10 times the time, and what "trouble" says: "once FILE" dies at time 3 while there is that
//   file,
//                   which it removes, "always" dies there always, "pids FILE" adds the process to a file and
//                   waits from the tenth frame on while there is FILE.hold, "grow" gives one pixel more each time
//   Counted Frames  gray 10 times how often the instance was executed before
#include "Platform/QuartzComposer/GFNodeManager.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Platform/QuartzComposer/QCPlugIn.h"
#include "Ports/VRTImage.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelFormat.h"

#include <unistd.h>

#include <csignal>
#include <fstream>
#include <memory>
#include <string>

namespace {

PropertyList attributesOf(bool isStateless) {
  PropertyList roles;
  roles.set("outputImagePort", PropertyList::string("outputImage"));
  PropertyList protocols;
  protocols.set("generator", std::move(roles));
  PropertyList attributes;
  attributes.set("protocols", std::move(protocols));
  if (isStateless) attributes.set("keepsState", PropertyList::boolean(false));
  return attributes;
}

void putGray(QCImagePort& port, double value, std::uint32_t width) {
  const std::shared_ptr<VortoBitmap> bitmap(TCCreateBitmap(width, 1, VortoPixelFormat::RGBA8));
  for (std::uint32_t i = 0; i < 4 * width; ++i) bitmap->data[i] = i % 4 == 3 ? 255 : static_cast<std::uint8_t>(value);
  VRTImage::setBitmapOfPort(port, bitmap);
}

[[noreturn]] void die() {
  std::signal(SIGSEGV, SIG_DFL);
  std::raise(SIGSEGV);
  _exit(1);
}

class FramesPatch : public QCPatch {
 public:
  FramesPatch() : QCPatch(attributesOf(true)) {
    output_ = addOutputPort<QCImagePort>("outputImage", PropertyList());
    trouble_ = addInputPort<QCStringPort>("inputTrouble", PropertyList());
  }

 private:
  bool execute(double time, std::string*) override {
    const std::string trouble = trouble_->stringValue();
    const std::string file = trouble.substr(std::min(trouble.find(' ') + 1, trouble.size()));
    if (trouble == "always" && time == 3) die();
    if (trouble.starts_with("once ") && time == 3 && ::unlink(file.c_str()) == 0) die();
    if (trouble.starts_with("pids ")) {
      std::ofstream(file, std::ios::app) << std::to_string(::getpid()) + "\n";
      while (time > 0.38 && ::access((file + ".hold").c_str(), F_OK) == 0) ::usleep(1000);
    }
    putGray(*output_, 10 * time, trouble == "grow" ? 1 + static_cast<std::uint32_t>(time) : 1);
    return true;
  }
  std::shared_ptr<QCImagePort> output_;
  std::shared_ptr<QCStringPort> trouble_;
};

class CountedFramesPatch : public QCPatch {
 public:
  CountedFramesPatch() : QCPatch(attributesOf(false)) {
    output_ = addOutputPort<QCImagePort>("outputImage", PropertyList());
  }

 private:
  bool execute(double, std::string*) override {
    putGray(*output_, 10.0 * count_++, 1);
    return true;
  }
  std::shared_ptr<QCImagePort> output_;
  int count_ = 0;
};

}  // namespace

QC_PLUGIN_ENTRY([](GFNodeManager& manager) {
  manager.registerNodeWithName("Frames", attributesOf(true), [] { return std::make_shared<FramesPatch>(); });
  manager.registerNodeWithName("Counted Frames", attributesOf(false),
                               [] { return std::make_shared<CountedFramesPatch>(); });
})
