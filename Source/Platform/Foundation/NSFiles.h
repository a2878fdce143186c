// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/PropertyList.h"
#include "Platform/Visibility.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

// Whole files. Reasons (which may be null) do not repeat the path.

// Reads a whole regular file of at most PropertyListMaximumBytes; anything else (a folder, a pipe, a device) is refused
// without waiting for it.
TARN_EXPORT std::optional<PropertyList::Bytes> NSReadFile(const std::string& path, std::string* reason);

// Writes beside the target and renames, so that a failure leaves an existing file as it was. An existing file keeps its
// permissions, except for set-id bits that a write into it would have cost it; a symbolic link stays, and the file that
// it leads to is replaced. Only regular files are replaced. Until it is complete the new file has no name, where the
// file system knows such files.
TARN_EXPORT bool NSWriteFile(const std::string& path, std::span<const std::uint8_t> bytes, std::string* reason);

// The same for who has the bytes piece by piece, and for what must not be in memory as a whole. What was begun and not
// committed is gone with the object.
class TARN_EXPORT NSReplacementFile {
 public:
  NSReplacementFile();
  ~NSReplacementFile();
  NSReplacementFile(const NSReplacementFile&) = delete;
  NSReplacementFile& operator=(const NSReplacementFile&) = delete;

  bool begin(const std::string& path, std::string* reason);  // first, once; the others only after it succeeded
  // Writes the bytes at `offset`, in any order; false, with the cause, when that fails.
  bool write(std::uint64_t offset, std::span<const std::uint8_t> bytes, std::string* reason);
  std::size_t read(std::uint64_t offset, std::span<std::uint8_t> bytes) const;  // what was written; how much of it
  bool commit(std::string* reason);                                             // last, once: replaces the target

 private:
  class Private;
  std::unique_ptr<Private> private_;
};

// Removes what NSWriteFile() and NSReplacementFile have begun and not finished. For the handlers of signals that end
// the process: safe there, and on any thread; what is being written then fails.
TARN_EXPORT void NSRemoveUnfinishedFiles();

// The file that a path leads to through any chain of symbolic links at its end, whether or not there is one; the path
// itself when it is no link. Empty, with the cause, for links in a circle.
TARN_EXPORT std::string NSResolvedPath(const std::string& path, std::string* reason);
