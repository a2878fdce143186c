#include "Platform/QuartzComposer/QCPlugIn.h"

#include <cstdlib>

const QCPlugInDescription* QCPlugInDescribe() {
  static const QCPlugInDescription description{QCPlugInInterfaceVersion + 1, [](GFNodeManager&) { std::abort(); }};
  return &description;
}
