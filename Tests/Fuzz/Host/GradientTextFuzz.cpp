// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Messages/Utf8.h"
#include "Host/States/StateChecks.h"
#include "Host/States/StatePrinting.h"
#include "Tests/Fuzz/Support/Check.h"

#include <string_view>

namespace {

// Text and JSON are the same state again; what other programs get can be read.
void checkWaysBack(const host::StateFile& file) {
  const auto read = [&](const std::string& text) {
    return host::stateFileFromBytes({text.begin(), text.end()}, nullptr, file.kind);
  };
  const auto json = read(host::stateAsJson(file));
  check(json && json->state == file.state, "JSON is the same state again");
  for (const auto format :
       {host::TextFormat::Text, host::TextFormat::Css, host::TextFormat::Svg, host::TextFormat::Gimp}) {
    host::Notes notes;
    std::string reason;
    const auto text = host::textOfParameter(file.kind, file.state, format, notes, &reason);
    if (!text) {
      check(!reason.empty() && !(format == host::TextFormat::Text && file.kind == host::StateKind::Gradient),
            "only what cannot be said is refused, with a reason");
      continue;
    }
    check(text->back() == '\n' && host::validUtf8(*text) == *text, "texts are whole lines of UTF-8");
    const auto back = read(*text);
    const bool isLong = text->size() > 500000;  // adding stops to what has the most already is refused
    check(isLong || (back && back->kind == file.kind), "what was written can be read");
    check(format != host::TextFormat::Text || back->state == file.state, "text is the same state again");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  try {
    host::parameterOfText(text, host::StateKind::Gradient);
  } catch (const host::TextFault& fault) {
    check(fault.offset <= size, "a fault has its place in the text");
    check(!std::string_view(fault.what()).empty(), "a fault is described");
  }
  for (const auto kind : {host::StateKind::Gradient, host::StateKind::Levels}) {
    std::string reason;
    const auto file = host::stateFileFromBytes({bytes, bytes + size}, &reason, kind);
    check(file || !reason.empty(), "a refusal has a reason");
    if (!file || file->kind == host::StateKind::Opaque) continue;
    check(host::faultOfState(file->kind, file->state).empty(), "what is read has no fault");
    checkWaysBack(*file);
  }
  return 0;
}
