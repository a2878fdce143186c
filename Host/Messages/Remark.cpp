// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Messages/Remark.h"

#include "Host/Messages/Progress.h"
#include "Host/Messages/Utf8.h"

#include <cstdio>
#include <utility>

namespace host {
namespace {

RemarksRedirected::Taker& taker() {
  thread_local RemarksRedirected::Taker instance;
  return instance;
}

}  // namespace

void remark(const std::string& text, const std::string& about) {
  if (taker()) return taker()({text, about.empty() ? text : about});
  const Progress::Aside aside;
  std::fprintf(stderr, "vorto: %s\n", printable(text).c_str());
}

RemarksRedirected::RemarksRedirected(Taker to) : former_(std::exchange(taker(), std::move(to))) {}

RemarksRedirected::~RemarksRedirected() {
  taker() = std::move(former_);
}

}  // namespace host
