// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>

namespace host {

// The bytes of a file, in memory that is not cleared first.
class FileContents {
 public:
  std::span<const std::uint8_t> bytes() const { return {bytes_.get(), size_}; }

  // A whole regular file; "-" is the standard input, to its end. Throws Failure naming the file and the cause; anything
  // else (a folder, a device) is refused without waiting for it.
  static FileContents ofFile(const std::string& path);

 private:
  struct Free {
    void operator()(std::uint8_t* bytes) const { std::free(bytes); }
  };
  void readToEnd(int descriptor, std::uint64_t expected);

  std::unique_ptr<std::uint8_t[], Free> bytes_;
  std::size_t size_ = 0;
};

}  // namespace host
