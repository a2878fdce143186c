// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Color/ColorModule.h"

#include "Host/Color/Module/Configuration.h"
#include "Host/Color/Module/Profiles.h"

#include <locale.h>

#include <exception>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

namespace host {
namespace {

using Kind = ColorSpace::Kind;

// While it lives, numbers have points: the libraries read and write some by the locale.
class PlainNumbers {
 public:
  PlainNumbers() : plain_(newlocale(LC_ALL_MASK, "C", nullptr)), before_(plain_ ? uselocale(plain_) : nullptr) {}
  ~PlainNumbers() {
    if (!plain_) return;
    uselocale(before_);
    freelocale(plain_);
  }
  PlainNumbers(const PlainNumbers&) = delete;
  PlainNumbers& operator=(const PlainNumbers&) = delete;

 private:
  locale_t plain_;
  locale_t before_;
};

// Runs the action; false, with the reason, when it throws.
template <class Action>
bool succeeds(std::string* reason, const Action& action) {
  try {
    const PlainNumbers plain;
    action();
    return true;
  } catch (const std::exception& error) {
    if (reason) *reason = error.what();
    return false;
  }
}

class Chain : public ColorTransform {
 public:
  Chain(std::unique_ptr<ColorTransform> first, std::unique_ptr<ColorTransform> second)
      : first_(std::move(first)), second_(std::move(second)) {}
  void apply(float* rgba, std::size_t pixels) override {
    first_->apply(rgba, pixels);
    second_->apply(rgba, pixels);
  }

 private:
  std::unique_ptr<ColorTransform> first_;
  std::unique_ptr<ColorTransform> second_;
};

bool hasName(const ColorSpace& space) {
  return space.kind == Kind::Known || space.kind == Kind::Named;
}

class LibraryModule : public ColorModule {
 public:
  explicit LibraryModule(std::string path) : path_(std::move(path)) {}

  bool findSpace(const std::string& name, ColorSpace* space, std::string* reason) override {
    return succeeds(reason, [&] { *space = configuration().find(name); });
  }

  bool checkProfile(const ColorSpace& space, std::string* reason) override {
    return succeeds(reason, [&] { host::checkProfile(space); });
  }

  std::unique_ptr<ColorTransform> makeTransform(const ColorSpace& from, const ColorSpace& to,
                                                std::string* reason) override {
    std::unique_ptr<ColorTransform> transform;
    succeeds(reason, [&] { transform = transformBetween(from, to); });
    return transform;
  }

  bool listViews(std::vector<DisplayView>* views, std::string* reason) override {
    return succeeds(reason, [&] { *views = path_.empty() ? std::vector<DisplayView>() : configuration().views(); });
  }

  std::unique_ptr<ColorTransform> makeViewTransform(const ColorSpace& from, const std::string& display,
                                                    const std::string& view, std::string* reason) override {
    std::unique_ptr<ColorTransform> transform;
    succeeds(reason, [&] { transform = transformToView(from, display, view); });
    return transform;
  }

  bool makeProfile(const ColorSpace& space, Bytes* profile, std::string* reason) override {
    return succeeds(reason, [&] { *profile = profileOf(space); });
  }

 private:
  const Configuration& configuration() {
    if (!configuration_) configuration_.emplace(path_);
    return *configuration_;
  }

  // Profiles and the names of the user's configuration meet in linear Rec. 709, where nothing is cut.
  std::unique_ptr<ColorTransform> transformBetween(const ColorSpace& from, const ColorSpace& to) {
    if (from.kind == Kind::Raw || to.kind == Kind::Raw) throw std::invalid_argument("raw values are not converted");
    const ColorSpace light = knownSpace(KnownSpace::LinearRec709, ColorSpace::Origin::Assumed);
    if (hasName(from) && hasName(to)) return configuration().makeTransform(from, to);
    const bool areNumbers = from.kind != Kind::Named && to.kind != Kind::Named && path_.empty();
    if (areNumbers || (!hasName(from) && !hasName(to))) return makeProfileTransform(from, to);
    if (hasName(from)) {
      return std::make_unique<Chain>(configuration().makeTransform(from, light), makeProfileTransform(light, to));
    }
    return std::make_unique<Chain>(makeProfileTransform(from, light), configuration().makeTransform(light, to));
  }

  std::unique_ptr<ColorTransform> transformToView(const ColorSpace& from, const std::string& display,
                                                  const std::string& view) {
    if (from.kind == Kind::Raw) throw std::invalid_argument("raw values are not converted");
    if (hasName(from)) return configuration().makeViewTransform(from, display, view);
    const ColorSpace light = knownSpace(KnownSpace::LinearRec709, ColorSpace::Origin::Assumed);
    return std::make_unique<Chain>(makeProfileTransform(from, light),
                                   configuration().makeViewTransform(light, display, view));
  }

  std::string path_;
  std::optional<Configuration> configuration_;
};

}  // namespace
}  // namespace host

extern "C" __attribute__((visibility("default"))) host::ColorModule* VortoColorModule(const char* configuration) {
  return new host::LibraryModule(configuration ? configuration : "");
}
