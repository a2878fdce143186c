// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <QApplication>

// The main of tests with widgets. Run by hand they use the offscreen platform too, unless another is asked for.
int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
