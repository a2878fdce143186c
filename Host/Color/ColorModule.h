// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Color/ColorSpace.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

// What the program and its module for color say to each other. The module holds the libraries, and is loaded when
// something is to be converted. Nothing throws: a call that fails returns false or null and puts the cause in *reason
// (which may be null).
namespace host {

// From one space to another.
class ColorTransform {
 public:
  virtual ~ColorTransform() = default;
  // In place: red, green, blue and alpha of each pixel, not premultiplied. Alpha stays. Values below 0 and above 1 are
  // converted too, where the spaces have them.
  virtual void apply(float* rgba, std::size_t pixels) = 0;
};

// How a configuration shows pictures: on a display, in one of its views.
struct DisplayView {
  std::string display;
  std::string view;
  bool isUsual = false;  // the view that the configuration shows unless it is told otherwise
};

class ColorModule {
 public:
  virtual ~ColorModule() = default;

  // A space of the configuration: by its name, an alias or a role, in any case.
  virtual bool findSpace(const std::string& name, ColorSpace* space, std::string* reason) = 0;

  // Whether colors can be converted from a profile and to it.
  virtual bool checkProfile(const ColorSpace& space, std::string* reason) = 0;

  virtual std::unique_ptr<ColorTransform> makeTransform(const ColorSpace& from, const ColorSpace& to,
                                                        std::string* reason) = 0;

  // The views of the user's configuration, by displays, in its order; none without a configuration.
  virtual bool listViews(std::vector<DisplayView>* views, std::string* reason) = 0;

  // From a space to what the display takes in that view.
  virtual std::unique_ptr<ColorTransform> makeViewTransform(const ColorSpace& from, const std::string& display,
                                                            const std::string& view, std::string* reason) = 0;

  // The ICC profile of a known or described space: the same bytes each time.
  virtual bool makeProfile(const ColorSpace& space, Bytes* profile, std::string* reason) = 0;
};

// The module's one exported function. `configuration` is the path of an OpenColorIO configuration, which is read when
// it is needed; null for the module's own, which has the known spaces. The caller deletes the object.
inline constexpr const char* kColorModuleEntry = "VortoColorModule";
using ColorModuleFunction = ColorModule* (*)(const char* configuration);

}  // namespace host
