#include "Platform/QuartzComposer/QCPlugIn.h"

const QCPlugInDescription* QCPlugInDescribe() {
  static const QCPlugInDescription description{QCPlugInInterfaceVersion, nullptr};
  return &description;
}
