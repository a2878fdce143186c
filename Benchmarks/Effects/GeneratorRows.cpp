// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/Effects/EffectBench.h"

namespace {

const MeasuredEffect kGenerators[] = {
    {"Solid Color", nullptr, nullptr, nullptr},
    {"Radial Ramp", nullptr, nullptr, nullptr},
    {"Noise", nullptr, nullptr, nullptr},
};

const MeasuredEffect kTransitions[] = {
    {"Slide", "inputImageA", "inputImageB", [](QCPatch& patch) { setNumber(patch, "inputTime", 0.37); }},
    {"Iris", "inputImageA", "inputImageB", [](QCPatch& patch) { setNumber(patch, "inputTime", 0.37); }},
};

const bool registered = registerRows(kGenerators) && registerRows(kTransitions);

}  // namespace
