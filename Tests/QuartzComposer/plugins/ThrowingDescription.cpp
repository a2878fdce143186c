// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCPlugIn.h"

#include <stdexcept>

const QCPlugInDescription* QCPlugInDescribe() {
  throw std::runtime_error("no words");
}
