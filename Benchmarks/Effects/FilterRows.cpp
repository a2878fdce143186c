// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/Effects/EffectBench.h"

namespace {

template <int sigma>
void setRadius(QCPatch& patch) {
  setNumber(patch, "inputRadius", sigma);
}

template <int filter>
void setTurn(QCPatch& patch) {
  setNumber(patch, "inputRotation", 17);
  setNumber(patch, "inputScaleX", 1.1);
  setNumber(patch, "inputScaleY", 1.1);
  setNumber(patch, "inputFilter", filter);
}

void setHalf(QCPatch& patch) {
  setNumber(patch, "inputScaleX", 0.5);
  setNumber(patch, "inputScaleY", 0.5);
}

void setMatrix(QCPatch& patch) {
  setNumber(patch, "inputRedFromGreen", 0.4);
  setNumber(patch, "inputBlueFromRed", -0.2);
  setNumber(patch, "inputGreenOffset", 0.1);
}

void setColorWheel(QCPatch& patch) {
  setNumber(patch, "inputHue", 40);
  setNumber(patch, "inputSaturation", 0.3);
}

void setCuts(QCPatch& patch) {
  for (const char* key : {"inputLeft", "inputTop", "inputRight", "inputBottom"}) setNumber(patch, key, 40);
}

const char kImage[] = "inputImage";
const MeasuredEffect kFilters[] = {
    {"Invert", kImage, nullptr, nullptr},
    {"Fill", kImage, nullptr, nullptr},
    {"Gaussian Blur", kImage, nullptr, setRadius<2>, "Gaussian Blur of 2"},
    {"Gaussian Blur", kImage, nullptr, setRadius<3>, "Gaussian Blur of 3"},
    {"Gaussian Blur", kImage, nullptr, setRadius<10>, "Gaussian Blur of 10"},
    {"Gaussian Blur", kImage, nullptr, setRadius<50>, "Gaussian Blur of 50"},
    {"Unsharp Mask", kImage, nullptr, nullptr},
    {"Hue Saturation Lightness", kImage, nullptr, setColorWheel},
    {"Color Matrix", kImage, nullptr, setMatrix},
    {"Transform", kImage, nullptr, setTurn<0>, "Transform, nearest"},
    {"Transform", kImage, nullptr, setTurn<1>, "Transform, bilinear"},
    {"Transform", kImage, nullptr, setTurn<2>, "Transform, Lanczos"},
    {"Transform", kImage, nullptr, setHalf, "Transform to half"},
    {"Crop", kImage, nullptr, setCuts},
    {"Drop Shadow", kImage, nullptr, nullptr},
};

const bool registered = registerRows(kFilters);

}  // namespace
