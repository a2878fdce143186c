// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/Dispatch.h"

#include <hwy/highway.h>
#include <cstdlib>
#include <cstring>

namespace vorto::kernels {
namespace {

enum class Mode { unread, simd, scalar };
Mode mode = Mode::unread;

// Bits of lower value are better targets, so a set and everything below it is a mask of the higher bits.
constexpr std::int64_t upTo(std::int64_t target) {
  return ~(target - 1);
}

struct NamedLimit {
  const char* name;
  std::int64_t targets;
};
constexpr NamedLimit kLimits[] = {
    {"sse4", upTo(HWY_SSE4)},
    {"avx2", upTo(HWY_AVX2)},
    {"avx512", upTo(HWY_AVX3)},
};

void allowOnly(std::int64_t targets) {
  hwy::SetSupportedTargetsForTest(0);
  if (targets != 0) hwy::SetSupportedTargetsForTest(hwy::SupportedTargets() & targets);
  hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

Mode readEnvironment() {
  const char* wanted = std::getenv("VORTO_SIMD");
  if (!wanted) return Mode::simd;
  if (std::strcmp(wanted, "scalar") == 0) return Mode::scalar;
  for (const NamedLimit& limit : kLimits) {
    if (std::strcmp(wanted, limit.name) == 0) allowOnly(limit.targets);
  }
  return Mode::simd;
}

}  // namespace

bool useScalar() {
  if (mode == Mode::unread) mode = readEnvironment();
  return mode == Mode::scalar;
}

std::vector<SimdTarget> simdTargets() {
  std::vector<SimdTarget> targets{{"scalar", 0}};
  hwy::SetSupportedTargetsForTest(0);
  for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
    targets.push_back({hwy::TargetName(target), target});
  }
  restoreSimdTarget();
  return targets;
}

void forceSimdTarget(const SimdTarget& target) {
  mode = target.mask == 0 ? Mode::scalar : Mode::simd;
  if (target.mask != 0) allowOnly(target.mask);
}

void restoreSimdTarget() {
  allowOnly(0);
  mode = Mode::unread;
}

}  // namespace vorto::kernels
