// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCPlugInProbe.h"

int main(int argc, char** argv) {
  return QCPlugInProbeMain(argc, argv);
}
