// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCPlugIn.h"

#include <cstdlib>

const QCPlugInDescription* QCPlugInDescribe() {
  static const QCPlugInDescription description{QCPlugInInterfaceVersion + 1, [](GFNodeManager&) { std::abort(); }};
  return &description;
}
