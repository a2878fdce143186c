// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Color/ColorModule.h"

#include <OpenColorIO/OpenColorIO.h>

#include <memory>
#include <string>
#include <vector>

namespace host {

// The spaces with names: those of an OpenColorIO configuration. Nothing of the environment counts, and the library's
// reports go nowhere.
class Configuration {
 public:
  // From a file, or with an empty path the own one. Throws std::runtime_error naming the file.
  explicit Configuration(const std::string& path);

  // Throw std::runtime_error when there is no such space.
  std::string nameOf(const ColorSpace& space) const;  // of Known and Named, in the configuration
  ColorSpace find(const std::string& name) const;

  // Throws std::runtime_error when there is no way between them.
  std::unique_ptr<ColorTransform> makeTransform(const ColorSpace& from, const ColorSpace& to) const;

  std::vector<DisplayView> views() const;
  std::unique_ptr<ColorTransform> makeViewTransform(const ColorSpace& from, const std::string& display,
                                                    const std::string& view) const;

 private:
  OCIO_NAMESPACE::ConstCPUProcessorRcPtr processor(const std::string& from, const std::string& to) const;
  bool isLinear(const std::string& name) const;

  std::string path_;
  OCIO_NAMESPACE::ConstConfigRcPtr config_;
  OCIO_NAMESPACE::ConstContextRcPtr context_;
};

}  // namespace host
