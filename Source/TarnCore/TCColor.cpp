// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCColor.h"

#include <cmath>

constinit const VortoColor VortoColor::RED(1, 0, 0, 1);
constinit const VortoColor VortoColor::GREEN(0, 1, 0, 1);
constinit const VortoColor VortoColor::BLUE(0, 0, 1, 1);
constinit const VortoColor VortoColor::BLACK(0, 0, 0, 1);
constinit const VortoColor VortoColor::WHITE(1, 1, 1, 1);
constinit const VortoColor VortoColor::CLEAR(0, 0, 0, 0);
constinit const VortoColor VortoColor::YELLOW(1, 1, 0, 1);

namespace {

constexpr float kTolerance5 = 0.00001f;

bool isClose(float a, float b, float tolerance) {
  return std::fabs(a - b) < tolerance;
}

float clamped(float x, float low, float high) {
  if (x < low) return low;
  if (x > high) return high;
  return x;  // NaN too
}

// Whether a color of one of the three hue models has no hue of its own.
bool isGray(const VortoColor& color) {
  if (color.type == VortoColor::HWB) return std::fabs(1 - color.c3 - color.c2) < kTolerance5;
  return std::fabs(color.c2) < kTolerance5;
}

// Calls `change` on the components that carry light in the color's model.
template <class Change>
void changeLight(VortoColor& color, Change change) {
  switch (color.type) {
    case VortoColor::RGB:
    case VortoColor::YIQ:
    case VortoColor::YUV:
      change(color.c1);
      change(color.c2);
      change(color.c3);
      break;
    case VortoColor::HSL:
    case VortoColor::HSV:
      change(color.c3);
      break;
    case VortoColor::HWB:
      change(color.c2);
      break;
    case VortoColor::CLU:
      change(color.c1);
      break;
  }
}

VortoColor convertedTo(VortoColor::Type type, VortoColor color) {
  color.convert(type);
  return color;
}

using ConversionFromRGB = void(float, float, float, float*, float*, float*);

void convertThroughRGB(VortoColor& color, VortoColor::Type type, ConversionFromRGB* conversion) {
  if (color.type > VortoColor::CLU) return;
  color.convertToRGB();
  conversion(color.c1, color.c2, color.c3, &color.c1, &color.c2, &color.c3);
  color.type = type;
}

}  // namespace

void VortoColor::convertToRGB() {
  switch (type) {
    case RGB:
      return;
    case HSL:
      HSLtoRGB(c1, c2, c3, &c1, &c2, &c3);
      break;
    case HSV:
      HSVtoRGB(c1, c2, c3, &c1, &c2, &c3);
      break;
    case HWB:
      HWBtoRGB(c1, c2, c3, &c1, &c2, &c3);
      break;
    case YIQ:
      YIQtoRGB(c1, c2, c3, &c1, &c2, &c3);
      break;
    case YUV:
      YUVtoRGB(c1, c2, c3, &c1, &c2, &c3);
      break;
    case CLU:
      CLUtoRGB(c1, c2, c3, &c1, &c2, &c3);
      break;
    default:
      return;
  }
  type = RGB;
}

void VortoColor::convertToHSL() {
  convertThroughRGB(*this, HSL, RGBtoHSL);
}
void VortoColor::convertToHSV() {
  convertThroughRGB(*this, HSV, RGBtoHSV);
}
void VortoColor::convertToHWB() {
  convertThroughRGB(*this, HWB, RGBtoHWB);
}
void VortoColor::convertToYIQ() {
  convertThroughRGB(*this, YIQ, RGBtoYIQ);
}
void VortoColor::convertToYUV() {
  convertThroughRGB(*this, YUV, RGBtoYUV);
}
void VortoColor::convertToCLU() {
  convertThroughRGB(*this, CLU, RGBtoCLU);
}

void VortoColor::convert(Type t) {
  if (t == type) return;
  switch (t) {
    case HSL:
      return convertToHSL();
    case HSV:
      return convertToHSV();
    case HWB:
      return convertToHWB();
    case RGB:
      return convertToRGB();
    case YIQ:
      return convertToYIQ();
    case YUV:
      return convertToYUV();
    case CLU:
      return convertToCLU();
  }
}

float VortoColor::getRed() const {
  return convertedTo(RGB, *this).c1;
}
float VortoColor::getGreen() const {
  return convertedTo(RGB, *this).c2;
}
float VortoColor::getBlue() const {
  return convertedTo(RGB, *this).c3;
}

void VortoColor::getRGBA(float* r, float* g, float* b, float* a) const {
  const VortoColor color = convertedTo(RGB, *this);
  *r = color.c1;
  *g = color.c2;
  *b = color.c3;
  *a = color.alpha;
}

VortoColor& VortoColor::add(float x) {
  c1 += x;
  c2 += x;
  c3 += x;
  return *this;
}

VortoColor& VortoColor::sub(float x) {
  c1 -= x;
  c2 -= x;
  c3 -= x;
  return *this;
}

VortoColor& VortoColor::mul(float x) {
  c1 *= x;
  c2 *= x;
  c3 *= x;
  return *this;
}

VortoColor& VortoColor::div(float x) {
  if (x == 0) return *this;
  c1 /= x;
  c2 /= x;
  c3 /= x;
  return *this;
}

VortoColor& VortoColor::operator+=(float x) {
  changeLight(*this, [x](float& component) { component += x; });
  return *this;
}

VortoColor& VortoColor::operator-=(float x) {
  changeLight(*this, [x](float& component) { component -= x; });
  return *this;
}

VortoColor& VortoColor::operator*=(float x) {
  changeLight(*this, [x](float& component) { component *= x; });
  return *this;
}

VortoColor& VortoColor::operator/=(float x) {
  if (x != 0) changeLight(*this, [x](float& component) { component /= x; });
  return *this;
}

VortoColor& VortoColor::operator+=(const VortoColor& o) {
  const VortoColor other = convertedTo(type == HWB && o.type == HSV ? HSL : type, o);
  switch (type) {
    case HSL:
    case HSV:
      if (!isGray(*this)) {
        c1 += other.c1;
        c2 += other.c2;
      }
      c3 += other.c3;
      break;
    case HWB:
      if (!isGray(*this)) c1 += other.c1;
      c2 += other.c2;
      c3 += other.c3;
      break;
    case RGB:
    case YIQ:
    case YUV:
    case CLU:
      c1 += other.c1;
      c2 += other.c2;
      c3 += other.c3;
      break;
  }
  return *this;
}

VortoColor& VortoColor::operator-=(const VortoColor& o) {
  VortoColor negated(o.type, -o.c1, -o.c2, -o.c3, 1);
  if ((o.type == HSL || o.type == HSV || o.type == HWB) && isGray(o)) {
    negated.c1 = o.c1;
    if (o.type != HWB) negated.c2 = o.c2;
  }
  return *this += negated;
}

VortoColor& VortoColor::mix(const VortoColor& o, float t) {
  c1 = (1 - t) * c1 + t * o.c1;
  c2 = (1 - t) * c2 + t * o.c2;
  c3 = (1 - t) * c3 + t * o.c3;
  return *this;
}

VortoColor& VortoColor::invert() {
  clamp();
  c1 = 1 - c1;
  c2 = 1 - c2;
  c3 = 1 - c3;
  return *this;
}

VortoColor& VortoColor::clamp() {
  alpha = clamped(alpha, 0, 1);
  switch (type) {
    case HSL:
    case HSV:
    case HWB:
      c2 = clamped(c2, 0, 1);
      c3 = clamped(c3, 0, 1);
      c1 = isGray(*this) ? 0 : clampHue(c1);
      break;
    case RGB:
      c1 = clamped(c1, 0, 1);
      c2 = clamped(c2, 0, 1);
      c3 = clamped(c3, 0, 1);
      break;
    case YIQ:
      c1 = clamped(c1, 0, 1);
      c2 = clamped(c2, -0.596f, 0.596f);
      c3 = clamped(c3, -0.274f, 0.274f);  // the magnitude of I's green coefficient, on purpose
      break;
    case YUV:
      c1 = clamped(c1, 0, 1);
      c2 = clamped(c2, -0.436f, 0.436f);
      c3 = clamped(c3, -0.615f, 0.615f);
      break;
    case CLU:
      c1 = clamped(c1, 0, 1);
      break;
  }
  return *this;
}

bool VortoColor::operator==(const VortoColor& o) const {
  const VortoColor other = convertedTo(type, o);
  return isClose(c1, other.c1, kTolerance5) && isClose(c2, other.c2, kTolerance5) &&
         isClose(c3, other.c3, kTolerance5) && isClose(alpha, other.alpha, kTolerance5);
}

bool VortoColor::operator!=(const VortoColor& o) const {
  return !(*this == o);
}

bool VortoColor::colorCompare(const VortoColor& o, float tolerance) const {
  const VortoColor other = convertedTo(type, o);
  return isClose(c1, other.c1, tolerance) || isClose(c2, other.c2, tolerance) || isClose(c3, other.c3, tolerance);
}
