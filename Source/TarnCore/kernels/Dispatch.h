// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <vector>

// The one switch between the instruction sets for which the kernels are compiled and their scalar definitions. Results
// do not depend on it.
//
// The environment variable VORTO_SIMD, read once, sets it: "scalar" for the definitions, or "sse4", "avx2" or "avx512"
// for the best set that the machine has up to that one. Without it, or with anything else, the best set is used.
namespace vorto::kernels {

// Whether kernels shall run their scalar definition.
bool useScalar();

struct SimdTarget {
  const char* name;
  std::int64_t mask;  // Highway's bit for the target; 0 stands for the scalar definitions
};

// The scalar definitions, then every target that is compiled in and that this machine has, best first. For tests and
// benchmarks, as are the two below.
std::vector<SimdTarget> simdTargets();
void forceSimdTarget(const SimdTarget& target);  // for the whole process
void restoreSimdTarget();                        // back to what the environment said

}  // namespace vorto::kernels
