// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/PropertyList.h"

#include <cstdio>
#include <cstdlib>

namespace {

void check(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
  }
}

}  // namespace

// Whatever is read can be written in the binary form, and comes back the same from every form that takes it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  std::string reason;
  const auto list = PropertyListFromBytes({bytes, size}, &reason);
  if (!list) {
    check(!reason.empty(), "a refusal has a reason");
    return 0;
  }
  for (const PropertyListFormat format : {PropertyListFormat::Binary, PropertyListFormat::Xml}) {
    const auto written = PropertyListToBytes(*list, format, &reason);
    if (!written) {
      check(!reason.empty(), "a refusal to write has a reason");
      continue;
    }
    const auto back = PropertyListFromBytes(*written, &reason);
    check(back.has_value(), "what was written can be read");
    if (format == PropertyListFormat::Binary) {
      check(*back == *list, "the binary form keeps every value");
    } else {
      // XML loses fractions of dates and the payload of NaN; what came back from it stays as it is.
      const auto again = PropertyListToBytes(*back, format, &reason);
      check(again.has_value() && *again == *written, "the XML form is stable");
    }
  }
  return 0;
}
