// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Color/Module/Configuration.h"

#include "Host/Color/KnownSpaces.h"
#include "Host/Color/Module/OwnConfiguration.h"

#include <stdlib.h>

#include <cmath>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <utility>
#include <vector>

extern char** environ;

namespace host {
namespace {

namespace OCIO = OCIO_NAMESPACE;

// The library takes optimization, logging, caches and more from variables of the environment. Where the configuration
// lies is known by now.
void forgetVariables() {
  std::vector<std::string> names;
  for (char** variable = environ; *variable; ++variable) {
    if (std::strncmp(*variable, "OCIO_", 5) == 0) names.emplace_back(*variable, std::strcspn(*variable, "="));
  }
  for (const std::string& name : names) unsetenv(name.c_str());
}

OCIO::ConstConfigRcPtr loadedConfig(const std::string& path) {
  forgetVariables();
  OCIO::SetLoggingFunction([](const char*) {});
  if (path.empty()) {
    std::istringstream text(ownConfiguration());
    return OCIO::Config::CreateFromStream(text);
  }
  try {
    return OCIO::Config::CreateFromFile(path.c_str());
  } catch (const std::exception& error) {
    throw std::runtime_error("the color configuration " + path + " (from $OCIO) cannot be used: " + error.what());
  }
}

// Variables in it have the values that it gives them itself.
OCIO::ConstContextRcPtr contextOf(const OCIO::Config& config) {
  const OCIO::ContextRcPtr context = config.getCurrentContext()->createEditableCopy();
  context->setEnvironmentMode(OCIO::ENV_ENVIRONMENT_LOAD_PREDEFINED);
  context->clearStringVars();
  for (int i = 0; i < config.getNumEnvironmentVars(); ++i) {
    const char* name = config.getEnvironmentVarNameByIndex(i);
    context->setStringVar(name, config.getEnvironmentVarDefault(name));
  }
  return context;
}

class ProcessorTransform : public ColorTransform {
 public:
  explicit ProcessorTransform(OCIO::ConstCPUProcessorRcPtr processor) : processor_(std::move(processor)) {}
  void apply(float* rgba, std::size_t pixels) override {
    constexpr std::size_t band = std::size_t{1} << 20;
    for (std::size_t i = 0; i < pixels; i += band) {
      const auto width = static_cast<long>(pixels - i < band ? pixels - i : band);
      OCIO::PackedImageDesc image(rgba + 4 * i, width, 1, 4);
      processor_->apply(image);
    }
  }

 private:
  OCIO::ConstCPUProcessorRcPtr processor_;
};

}  // namespace

Configuration::Configuration(const std::string& path)
    : path_(path), config_(loadedConfig(path)), context_(contextOf(*config_)) {}

std::string Configuration::nameOf(const ColorSpace& space) const {
  const auto canonicalName = [&](const char* name) { return std::string(config_->getCanonicalName(name)); };
  if (space.kind == ColorSpace::Kind::Known) {
    const KnownSpaceFacts& facts = factsOf(space.known);
    for (const char* alias : facts.aliases) {
      if (std::string name = canonicalName(alias); !name.empty()) return name;
    }
    if (std::string name = canonicalName(facts.name); !name.empty()) return name;
  } else if (std::string name = canonicalName(space.name.c_str()); !name.empty()) {
    return name;
  }
  throw std::runtime_error("the color configuration " + path_ + " (from $OCIO) has no space \"" + space.name +
                           "\"; --input-space, --working-space and --output-space name spaces that it has");
}

bool Configuration::isLinear(const std::string& name) const {
  const std::string encoding = config_->getColorSpace(name.c_str())->getEncoding();
  if (!encoding.empty()) return encoding == "scene-linear" || encoding == "display-linear";
  // Configurations of version 1 do not tell: it is linear when a multiple of light is a multiple of its samples.
  if (!config_->getColorSpace(OCIO::ROLE_SCENE_LINEAR)) return false;
  std::array<float, 8> samples{0.25f, 0.25f, 0.25f, 1, 0.5f, 0.5f, 0.5f, 1};
  ProcessorTransform(processor(name, OCIO::ROLE_SCENE_LINEAR)).apply(samples.data(), 2);
  for (std::size_t i = 0; i < 3; ++i) {
    if (!(std::abs(samples[4 + i] - 2 * samples[i]) <= 1e-4f)) return false;
  }
  return true;
}

ColorSpace Configuration::find(const std::string& name) const {
  ColorSpace space = namedSpace(name, false, false, ColorSpace::Origin::Told);
  space.name = nameOf(space);
  const auto found = config_->getColorSpace(space.name.c_str());
  if (!found) throw std::runtime_error("the color configuration " + path_ + " cannot convert to \"" + name + "\"");
  if (found->isData()) return rawSpace(ColorSpace::Origin::Told);
  const std::string encoding = found->getEncoding();
  space.isLinear = isLinear(space.name);
  space.isDisplay = encoding == "sdr-video" || encoding == "hdr-video" || (encoding.empty() && !space.isLinear);
  return space;
}

OCIO::ConstCPUProcessorRcPtr Configuration::processor(const std::string& from, const std::string& to) const {
  return config_->getProcessor(context_, from.c_str(), to.c_str())
      ->getOptimizedCPUProcessor(OCIO::OPTIMIZATION_LOSSLESS);
}

std::unique_ptr<ColorTransform> Configuration::makeTransform(const ColorSpace& from, const ColorSpace& to) const {
  const std::string fromName = nameOf(from);
  const std::string toName = nameOf(to);
  try {
    return std::make_unique<ProcessorTransform>(processor(fromName, toName));
  } catch (const std::exception& error) {
    throw std::runtime_error("the color configuration " + path_ + " (from $OCIO) cannot convert \"" + fromName +
                             "\" to \"" + toName + "\": " + error.what());
  }
}

std::vector<DisplayView> Configuration::views() const {
  std::vector<DisplayView> views;
  const std::string usual = config_->getDefaultDisplay();
  for (int i = 0; i < config_->getNumDisplays(); ++i) {
    const std::string display = config_->getDisplay(i);
    const std::string usualView = config_->getDefaultView(display.c_str());
    for (int j = 0; j < config_->getNumViews(display.c_str()); ++j) {
      const std::string view = config_->getView(display.c_str(), j);
      views.push_back({display, view, display == usual && view == usualView});
    }
  }
  return views;
}

std::unique_ptr<ColorTransform> Configuration::makeViewTransform(const ColorSpace& from, const std::string& display,
                                                                 const std::string& view) const {
  const std::string fromName = nameOf(from);
  try {
    const auto transform = OCIO::DisplayViewTransform::Create();
    transform->setSrc(fromName.c_str());
    transform->setDisplay(display.c_str());
    transform->setView(view.c_str());
    return std::make_unique<ProcessorTransform>(config_->getProcessor(context_, transform, OCIO::TRANSFORM_DIR_FORWARD)
                                                    ->getOptimizedCPUProcessor(OCIO::OPTIMIZATION_LOSSLESS));
  } catch (const std::exception& error) {
    throw std::runtime_error("the color configuration " + path_ + " (from $OCIO) cannot show \"" + fromName +
                             "\" on \"" + display + "\" as \"" + view + "\": " + error.what());
  }
}

}  // namespace host
