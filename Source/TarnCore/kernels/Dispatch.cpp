// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/Dispatch.h"

#include <hwy/highway.h>
#include <atomic>
#include <cstdlib>
#include <cstring>

namespace vorto::kernels {
namespace {

enum class Mode { unread, simd, scalar };
std::atomic<Mode> mode = Mode::unread;

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
  hwy::GetChosenTarget().Update(hwy::SupportedTargets());
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
  const Mode known = mode.load(std::memory_order_relaxed);
  if (known != Mode::unread) return known == Mode::scalar;
  const Mode read = readEnvironment();
  mode.store(read, std::memory_order_relaxed);
  return read == Mode::scalar;
}

namespace {

// Settled while the library is loaded: afterwards any number of threads may render at once.
[[maybe_unused]] const bool kIsSettled = useScalar();

}  // namespace

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
