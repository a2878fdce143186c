// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelGradient.h"
#include "Ports/VRTObjects.h"
#include "Registry/VRTNodeManager.h"
#include "Registry/VRTProtocols.h"
#include "TarnCore/TCBitmap.h"

#include <cstdio>
#include <memory>

// Loads the plug-in folder that it is given, finds the generator in it, and uses one class of every public room.
int main(int count, char** arguments) {
  if (count != 2) return 2;
  const auto manager = VRTNodeManager::manager();
  manager->loadPlugInsInFolder(arguments[1], {"plugin"});
  const auto patch = manager->nodeInstanceWithName("Nothing");
  if (!patch || !isVortoGenerator(*patch) || generatorOutputImagePort(*patch) == nullptr) {
    std::fprintf(stderr, "the outside generator was not found\n");
    return 1;
  }
  unsigned char table[8];
  VRTGradient::gradient()->getGradient8(table, 2);
  if (table[1] != 255 || table[5] != 0) {
    std::fprintf(stderr, "a new gradient does not run from white to black\n");
    return 1;
  }
  const std::unique_ptr<VortoBitmap> bitmap(TCCreateBitmap(3, 2, 0));
  return bitmap && bitmap->data != nullptr ? 0 : 1;
}
