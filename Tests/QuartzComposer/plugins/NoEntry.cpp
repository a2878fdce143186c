// SPDX-License-Identifier: BSD-3-Clause
extern "C" __attribute__((visibility("default"))) int QCPlugInSomethingElse() {
  return 0;
}
