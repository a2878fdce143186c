// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

namespace host {

// Nothing that the libraries log is printed.
void silenceLibraries();

// While one exists, the first error that the libraries log on this thread is kept. They do not nest.
class LoggedError {
 public:
  LoggedError();
  LoggedError(const LoggedError&) = delete;
  LoggedError& operator=(const LoggedError&) = delete;
  ~LoggedError();

  // Whether what reads a file, and not a codec, has logged one: something of the file is damaged.
  bool isOfFile() const;

  // What an error code means, with what was logged: "Invalid data found when processing input (moov atom not found)".
  std::string reason(int error) const;
};

// What an error code of the libraries means.
std::string avErrorText(int error);

}  // namespace host
