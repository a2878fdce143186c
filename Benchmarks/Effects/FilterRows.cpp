// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/Effects/EffectBench.h"

namespace {

template <int sigma>
void setRadius(QCPatch& patch) {
  setNumber(patch, "inputRadius", sigma);
}

const char kImage[] = "inputImage";
const Effect kFilters[] = {
    {"Invert", kImage, nullptr, nullptr},
    {"Fill", kImage, nullptr, nullptr},
    {"Gaussian Blur", kImage, nullptr, setRadius<2>, "Gaussian Blur of 2"},
    {"Gaussian Blur", kImage, nullptr, setRadius<3>, "Gaussian Blur of 3"},
    {"Gaussian Blur", kImage, nullptr, setRadius<10>, "Gaussian Blur of 10"},
    {"Gaussian Blur", kImage, nullptr, setRadius<50>, "Gaussian Blur of 50"},
};

const bool registered = registerRows(kFilters);

}  // namespace
