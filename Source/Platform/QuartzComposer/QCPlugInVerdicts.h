// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

// Inside this room only.

// A file as it is now.
struct QCPlugInFile {
  std::string path;
  std::string state;  // size, time and number of the file: other contents have another one

  // Nothing for what is no file.
  static std::optional<QCPlugInFile> of(const std::string& path);
};

// What was found out about the binaries of plug-ins, kept from process to process in $XDG_CACHE_HOME/vorto/plug-ins, or
// below ~/.cache. A file that is missing, damaged, too large, or that others can write counts as empty; one that cannot
// be written is left. Nothing but time is lost.
class QCPlugInVerdicts {
 public:
  // For what this program finds out: another version of it starts from nothing.
  explicit QCPlugInVerdicts(const std::string& program);

  // The cause for which the binary is not loaded, empty when it can be; nothing when it is not known.
  std::optional<std::string> find(const QCPlugInFile& file) const;
  void add(const QCPlugInFile& file, const std::string& cause);

 private:
  struct Verdict {
    std::string state;
    std::string cause;
  };

  void read();
  void write() const;

  std::string heading_;  // of the file that this program writes; empty when it cannot be told from other versions
  std::map<std::string, Verdict> verdicts_;
};
