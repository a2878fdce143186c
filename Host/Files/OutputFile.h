// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"
#include "Platform/Foundation/NSFiles.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace host {

// Throws Failure when a file of that name could not be written: no such folder, no permission, or something that is no
// regular file has the name. Called before the work starts.
void checkOutput(const std::string& path);

// Writes beside the target and renames, through symbolic links. Throws Failure, with the old file as it was, when that
// does not succeed.
void replaceFile(const std::string& path, std::span<const std::uint8_t> bytes);

// The same for what is written piece by piece. The old file stays as it is until commit().
class OutputFile : public OutputBytes {
 public:
  explicit OutputFile(const std::string& path);  // throws Failure
  bool write(std::uint64_t offset, std::span<const std::uint8_t> bytes) override;
  std::size_t read(std::uint64_t offset, std::span<std::uint8_t> bytes) override;
  const std::string& fault() const { return fault_; }  // why write() failed; empty when it did not
  void commit();                                       // throws Failure

 private:
  const std::string path_;
  NSReplacementFile file_;
  std::string fault_;
};

// The bytes of a file in memory, for the standard output.
class OutputBuffer : public OutputBytes {
 public:
  bool write(std::uint64_t offset, std::span<const std::uint8_t> bytes) override;
  std::size_t read(std::uint64_t offset, std::span<std::uint8_t> bytes) override;
  std::span<const std::uint8_t> bytes() const { return bytes_; }

 private:
  std::vector<std::uint8_t> bytes_;
};

}  // namespace host
