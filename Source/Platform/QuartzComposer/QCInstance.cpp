// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCInstance.h"

#include "Platform/Foundation/NSUnicode.h"

#include <cstdio>
#include <exception>

void QCReport(std::string_view what, std::string_view reason) {
  std::fprintf(stderr, "%s: %s\n", NSPrintableText(what).c_str(), NSPrintableText(reason).c_str());
}

std::shared_ptr<QCPatch> QCMakeInstance(std::string_view name, const QCPatch::Factory& factory) {
  try {
    if (std::shared_ptr<QCPatch> instance = factory()) return instance;
    QCReport(name, "the node could not be made: its factory gives none");
  } catch (const std::exception& error) {
    QCReport(name, std::string("the node could not be made: ") + error.what());
  } catch (...) {
    QCReport(name, "the node could not be made");
  }
  return nullptr;
}
