// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/InspectorApplication.h"

#include "Host/Files/FrameFiles.h"
#include "Host/Inspect/Appearance.h"
#include "Host/Inspect/EffectWindow.h"
#include "Host/Inspect/FileRole.h"
#include "Host/Inspect/MessageBar.h"
#include "Host/Inspect/ParameterDocument.h"
#include "Host/Inspect/StateWindow.h"
#include "Host/Messages/Failure.h"
#include "Host/Rendering/Effects.h"
#include "Host/States/StateFile.h"

#include <QApplication>
#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace host {
namespace {

constexpr const char* kUsualEffect = "Levels";

struct NamedAppearance {
  const char* name;
  InspectorApplication::Appearance appearance;
};
constexpr NamedAppearance kAppearances[] = {{"desktop", InspectorApplication::Appearance::Desktop},
                                            {"light", InspectorApplication::Appearance::Light},
                                            {"dark", InspectorApplication::Appearance::Dark}};

InspectorApplication::Appearance appearanceNamed(const std::string& name) {
  for (const auto& each : kAppearances) {
    if (name == each.name) return each.appearance;
  }
  return InspectorApplication::Appearance::Desktop;
}

}  // namespace

InspectorApplication::InspectorApplication(const std::string& appearance, bool remembers)
    : preferences_(remembers),
      appearance_(appearanceNamed(appearance.empty() ? preferences_.text("appearance").toStdString() : appearance)) {
  desktop_ = std::make_unique<DesktopAppearance>([this] { applyNow(); });
  applyNow();
}

InspectorApplication::~InspectorApplication() {
  const auto windows = std::exchange(windows_, {});
  for (const QPointer<QWidget>& window : windows) delete window;
}

void InspectorApplication::applyNow() {
  const bool isDark = appearance_ == Appearance::Desktop ? desktop_->isDark() : appearance_ == Appearance::Dark;
  applyAppearance(*qApp, isDark ? "dark" : "light");
}

void InspectorApplication::setAppearance(Appearance appearance) {
  if (appearance == appearance_) return;
  appearance_ = appearance;
  for (const auto& each : kAppearances) {
    if (each.appearance == appearance) preferences_.setText("appearance", each.name);
  }
  applyNow();
}

std::string InspectorApplication::usualEffect() const {
  std::string last = preferences_.text("lastEffect").toStdString();
  for (const EffectKind kind : {EffectKind::Filter, EffectKind::Transition, EffectKind::BlendMode}) {
    if (std::ranges::count(effectNames(kind), last) > 0) return last;
  }
  return kUsualEffect;
}

QList<QWidget*> InspectorApplication::windows() const {
  QList<QWidget*> windows;
  for (const QPointer<QWidget>& window : windows_) {
    if (window && window->isVisible()) windows.append(window);
  }
  return windows;
}

void InspectorApplication::show(QWidget* window) {
  window->setAttribute(Qt::WA_DeleteOnClose);
  windows_.removeAll(nullptr);
  windows_.append(window);
}

EffectWindow& InspectorApplication::openEffect(const InspectOptions& options) {
  auto window = std::make_unique<EffectWindow>(options, *this);
  EffectWindow* opened = window.release();
  show(opened);
  return *opened;
}

StateWindow& InspectorApplication::openState(const std::string& assignment) {
  auto* window = new StateWindow(ParameterDocument::ofState(assignment));
  show(window);
  return *window;
}

void InspectorApplication::openFiles(const QStringList& paths) {
  InspectOptions options;
  std::vector<std::string> reasons;
  for (const QString& path : paths) {
    const std::string name = path.toStdString();
    if (fileRoleOf(name) == FileRole::Input) {
      options.inputs.push_back(name);
      continue;
    }
    try {
      openState(std::string(stateKindName(readStateFile(name).kind)) + "=" + name).show();
      preferences_.noteFile(path);
    } catch (const Failure& failure) {
      reasons.emplace_back(failure.what());
    }
  }
  if (!options.inputs.empty()) {
    options.effect = usualEffect();
    openEffect(options).show();
  }
  if (reasons.empty()) return;
  const QList<QWidget*> opened = windows();
  auto* last = opened.isEmpty() ? nullptr : opened.last();
  std::string all = reasons[0];
  for (std::size_t i = 1; i < reasons.size(); ++i) all += "\n" + reasons[i];
  if (auto* window = dynamic_cast<EffectWindow*>(last)) return window->messages().show(QString::fromStdString(all));
  if (auto* window = dynamic_cast<StateWindow*>(last)) return window->messages().show(QString::fromStdString(all));
  throw Failure(ExitCode::Input, all);
}

}  // namespace host
