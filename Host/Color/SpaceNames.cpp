// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Color/SpaceNames.h"

#include "Host/Color/ColorModuleLoader.h"
#include "Host/Color/KnownSpaces.h"
#include "Host/Messages/Failure.h"

namespace host {

ColorSpace spaceOfOption(const std::string& option, const std::string& name) {
  if (equalIgnoringCase(name, "raw")) return rawSpace(ColorSpace::Origin::Told);
  if (const auto known = knownSpaceNamed(name)) return knownSpace(*known, ColorSpace::Origin::Told);
  if (userConfiguration().empty()) {
    throw Failure(ExitCode::Usage, option + " " + name + ": there is no such color space; there are " +
                                       knownSpaceList() + " and raw, and with $OCIO those of that configuration");
  }
  ColorSpace space;
  std::string reason;
  if (!colorModule().findSpace(name, &space, &reason))
    throw Failure(ExitCode::Usage, option + " " + name + ": " + reason);
  return space;
}

}  // namespace host
