// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Messages/CloseNames.h"

#include "Platform/QuartzComposer/QCCloseNames.h"

namespace host {

std::string closeNamesHint(const std::string& unknown, const std::vector<std::string>& known,
                           const std::string& otherwise) {
  const std::string hint = QCCloseNamesHint(unknown, known);
  return hint.empty() ? "; " + otherwise : hint;
}

std::string joinedNames(const std::vector<std::string>& names, const std::string& lastSeparator) {
  std::string text;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i > 0) text += i + 1 == names.size() ? lastSeparator : ", ";
    text += names[i];
  }
  return text;
}

}  // namespace host
