// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/Exr/ExrPart.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace host::exr {

// The compressions that the format's own library does. It is a large one, and most files do without: it lies behind a
// module of its own, which is loaded by the first file that needs it.
class Methods {
 public:
  virtual ~Methods() = default;

  // One block, whose channels have all samples, from or to uncompressed samples in the order in which files hold them.
  struct Job {
    std::uint8_t compression = kPiz;
    const std::vector<Channel>* channels = nullptr;
    std::uint64_t width = 0;
    std::uint64_t height = 0;
    float level = -1;  // of kDwaa and kDwab; negative: the library's default
  };
  // False, with the cause, when the block is damaged. `samples` is as large as the pixels take.
  virtual bool unpack(const Job& job, std::span<const std::uint8_t> stored, std::span<std::uint8_t> samples,
                      std::string* reason) = 0;
  // What does not become smaller is stored as it is.
  virtual bool pack(const Job& job, std::span<const std::uint8_t> samples, std::vector<std::uint8_t>* stored,
                    std::string* reason) = 0;
};

// Null, with the cause, when the module or its library is not installed.
Methods* methods(std::string* reason);

// The module's one exported function. The object lives as long as the process.
inline constexpr const char* kMethodsEntry = "VortoExrMethods";
using MethodsFunction = Methods* (*)();

}  // namespace host::exr
