// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCPlugIn.h"

const QCPlugInDescription* QCPlugInDescribe() {
  return nullptr;
}
