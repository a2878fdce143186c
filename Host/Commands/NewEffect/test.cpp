// SPDX-License-Identifier: BSD-3-Clause
#include "Ports/VRTImage.h"
#include "Registry/VRTNodeManager.h"
#include "Registry/VRTProtocols.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelFormat.h"

#include <cstdio>
#include <cstring>
#include <stdexcept>

// test FOLDER EFFECT: loads the folder's bundles and renders the effect.

namespace {

void require(bool holds, const char* what) {
  if (!holds) throw std::runtime_error(what);
}

// A wedge of grays, the upper half of it half transparent. `shift` makes pictures that differ.
std::shared_ptr<VortoBitmap> picture(unsigned shift) {
  std::shared_ptr<VortoBitmap> bitmap(TCCreateBitmap(64, 16, VortoPixelFormat::RGBA8));
  for (unsigned i = 0; i < 64 * 16; ++i) {
    const auto alpha = static_cast<std::uint8_t>(i < 64 * 8 ? 128 : 255);
    const auto gray = static_cast<std::uint8_t>((i * 4 + shift) % 256 * alpha / 255);
    for (unsigned channel = 0; channel < 3; ++channel) bitmap->data[4 * i + channel] = gray;
    bitmap->data[4 * i + 3] = alpha;
  }
  return bitmap;
}

std::shared_ptr<const VortoBitmap> rendered(QCPatch& patch) {
  std::string reason;
  if (!patch.executeAtTime(0, &reason)) throw std::runtime_error(reason);
  auto* port = dynamic_cast<QCImagePort*>(patch.outputPortForKey("outputImage"));
  require(port != nullptr, "there is no port outputImage");
  return VRTImage::bitmapOfPort(*port);
}

void test(QCPatch& patch) {
  const bool isGenerator = isVortoGenerator(patch);
  if (!isGenerator) require(!rendered(patch), "a missing image gives a missing image");

  unsigned shift = 0;
  for (const auto& port : patch.inputPorts()) {
    if (auto* image = dynamic_cast<QCImagePort*>(port.get())) VRTImage::setBitmapOfPort(*image, picture(shift += 100));
    if (auto* number = dynamic_cast<QCNumberPort*>(port.get()); number && port->key() == "inputTime") {
      number->setDoubleValue(0.5);
    }
  }
  const auto result = rendered(patch), again = rendered(patch);
  require(result && again, "there is a result");
  require(isGenerator || (result->width == 64 && result->height == 16), "the result has the size of the image");
  const std::size_t bytes = std::size_t{result->width} * result->height * 4;
  require(std::memcmp(result->data, again->data, bytes) == 0, "the same again gives the same");
  bool isUniform = true;
  for (std::size_t i = 0; i < bytes; i += 4) {
    const std::uint8_t* pixel = result->data + i;
    for (int channel = 0; channel < 3; ++channel) require(pixel[channel] <= pixel[3], "the result is premultiplied");
    isUniform = isUniform && std::memcmp(pixel, result->data, 4) == 0;
  }
  require(!isUniform, "there is something in the picture");
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 3) return 2;
  const auto manager = VRTNodeManager::manager();
  manager->loadPlugInsInFolder(arguments[1], {"plugin"});
  try {
    const auto patch = manager->nodeInstanceWithName(arguments[2]);
    require(patch != nullptr, "the effect can be made");
    test(*patch);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: not so: %s\n", arguments[2], error.what());
    return 1;
  }
  return 0;
}
