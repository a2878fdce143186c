// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Messages/Failure.h"
#include "Host/Messages/Utf8.h"
#include "Host/States/StateChecks.h"
#include "Host/States/StatePrinting.h"
#include "Tests/Fuzz/Support/Check.h"

#include <string_view>

namespace {

void checkText(const std::string& text, const char* promise) {
  check(!text.empty() && text.back() == '\n' && host::validUtf8(text) == text, promise);
}

// Gradients and levels come back from every format and form; opaque data may hold what cannot be written.
void checkConversions(const host::StateFile& file) {
  for (const auto format : {PropertyListFormat::Xml, PropertyListFormat::Binary}) {
    for (const auto form : {host::StateForm::Dictionary, host::StateForm::Archive}) {
      PropertyList::Bytes bytes;
      try {
        bytes = host::convertedState(file, "fuzz", format, form);
      } catch (const host::Failure& failure) {
        check(!std::string_view(failure.what()).empty(), "a failed conversion has a reason");
        continue;
      }
      std::string reason;
      const auto back = host::stateFileFromBytes(std::move(bytes), &reason);
      check(back.has_value(), "what was converted can be read");
      check(back->kind == file.kind && back->format == format && back->form == form, "it is of the wanted form");
      if (file.kind != host::StateKind::Opaque) check(back->state == file.state, "it is the same state");
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  std::string reason;
  const auto file = host::stateFileFromBytes({bytes, bytes + size}, &reason);
  if (!file) {
    check(!reason.empty(), "a refusal has a reason");
    return 0;
  }
  check(host::faultOfState(file->kind, file->state).empty(), "what is read has no fault");
  checkText(host::stateAsText(*file), "tables are whole lines of UTF-8");
  checkText(host::stateAsJson(*file), "JSON is whole lines of UTF-8");
  checkConversions(*file);
  return 0;
}
