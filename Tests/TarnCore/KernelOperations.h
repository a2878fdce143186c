// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "TarnCore/kernels/Dispatch.h"
#include "TarnCore/kernels/Unpremultiply.h"
#include "Tests/TarnCore/PixelOracle.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

// Every kernel that runs over pixels, beside what it should come to.
namespace kerneltesting {

using oracle::Bytes;
using oracle::Color;
using oracle::Count;
using oracle::From;
using oracle::To;

using Run = std::function<void(To, From, Count, const Color& background)>;

struct Operation {
  std::string name;
  std::size_t written, read;  // bytes of a unit; in place, `read` is 0
  oracle::Number number;      // what is written
  bool hasBackground;
  Run run;                     // in the instruction set that is chosen
  Run expected;
  const Bytes* domain = nullptr;  // what it reads; null where any bytes do

  bool isInPlace() const { return read == 0; }
};

const std::vector<Operation>& operations();

template <class Function>
void onEveryTarget(Function function) {
  for (const auto& target : vorto::kernels::simdTargets()) {
    SCOPED_TRACE(target.name);
    vorto::kernels::forceSimdTarget(target);
    function();
  }
  vorto::kernels::restoreSimdTarget();
}

}  // namespace kerneltesting
