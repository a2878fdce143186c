#include "Platform/QuartzComposer/QCPlugIn.h"

const QCPlugInDescription* QCPlugInDescribe() {
  return nullptr;
}
