// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>

namespace frei0r {

// What sets one stub apart from another: a record in its file that is filled when it is written. Texts end with a 0.
struct StubFields {
  char mark[32];         // kStubMark
  std::uint32_t inputs;  // how many frames the effect takes, 0 to 3
  char effect[1020];     // its name
  char module[4096];     // the module's path; empty: where it lies from the stub's own folder
};

inline constexpr char kStubMark[32] = "vorto frei0r stub, version 1";

}  // namespace frei0r
