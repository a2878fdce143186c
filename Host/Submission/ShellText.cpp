// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Submission/ShellText.h"

#include "Host/Messages/Failure.h"
#include "Host/Messages/Utf8.h"

namespace host {
namespace {

constexpr const char* kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-./,:=@%+";

bool isPlain(const std::string& text) {
  return !text.empty() && text.find_first_not_of(kPlain) == std::string::npos;
}

std::string replaced(const std::string& text, char wanted, const char* replacement) {
  std::string result;
  for (const char c : text) {
    if (c == wanted) {
      result += replacement;
    } else {
      result += c;
    }
  }
  return result;
}

}  // namespace

std::string shellWord(const std::string& text) {
  return isPlain(text) ? text : "'" + replaced(text, '\'', "'\\''") + "'";
}

std::string batchWord(const std::string& text) {
  if (text.find_first_of("\n\r") != std::string::npos) {
    throw Failure(ExitCode::Usage, "a batch script cannot hold the line break in " + printable(text));
  }
  return isPlain(text) ? text : '"' + replaced(replaced(text, '\\', "\\\\"), '"', "\\\"") + '"';
}

std::string batchFileName(const std::string& path) {
  if (path.find('\\') != std::string::npos) {
    throw Failure(ExitCode::Usage, "sbatch takes no backslash in the names of logs: " + printable(path));
  }
  return replaced(path, '%', "%%");
}

}  // namespace host
