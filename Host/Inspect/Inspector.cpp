// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/Inspector.h"

#include "Editors/VRTEditors.h"
#include "Host/Commands/OptionValues.h"
#include "Host/Files/FileFormat.h"
#include "Host/Files/OutputFile.h"
#include "Host/Inspect/Benchmark.h"
#include "Host/Inspect/EffectWindow.h"
#include "Host/Inspect/InspectorApplication.h"
#include "Host/Inspect/Screenshot.h"
#include "Host/Inspect/StateWindow.h"
#include "Host/Inspect/WindowSystem.h"
#include "Host/Messages/Failure.h"

#include <QApplication>

namespace host {
namespace {

constexpr int kMostMilliseconds = 600000;  // until the picture of a screenshot is there

void checkOptions(const InspectOptions& options) {
  checkTime(options.time);
  if (options.rate) checkRate(*options.rate);
  const bool effectOptions = !options.inputs.empty() || !options.values.empty() || !options.framing.size.empty() ||
                             options.time || !options.depth.empty() || !options.frames.empty();
  if (options.effect.empty() && effectOptions) {
    throw Failure(ExitCode::Usage, "without an effect only --open FILE and one --state KIND=FILE can be opened");
  }
  if (options.effect.empty() && options.states.size() > 1) {
    throw Failure(ExitCode::Usage, "give an effect, or one --state KIND=FILE, as in --state gradient=FILE");
  }
  if (!options.files.empty() && (!options.effect.empty() || !options.states.empty())) {
    throw Failure(ExitCode::Usage, "--open: without an effect and --state; --input FILE gives an effect its pictures");
  }
  if (options.screenshot.empty()) return;
  if (options.effect.empty() && options.states.empty()) {
    throw Failure(ExitCode::Usage, "--screenshot: give an effect, or one --state KIND=FILE");
  }
  fileFormatOf(options.screenshot);
  checkOutput(options.screenshot);
}

// What the command line says either works, or is refused as by render.
void shootEffect(InspectorApplication& inspector, const InspectOptions& options) {
  EffectWindow& window = inspector.openEffect(options);
  window.show();
  window.waitForPicture(kMostMilliseconds);
  if (const auto failure = window.failure()) throw Failure(failure->code, failure->text);
  writeScreenshot(window, options.screenshot);
}

void openWindows(InspectorApplication& inspector, const InspectOptions& options) {
  if (!options.files.empty()) {
    QStringList paths;
    for (const std::string& path : options.files) paths.append(QString::fromStdString(path));
    return inspector.openFiles(paths);
  }
  if (!options.states.empty() && options.effect.empty()) return inspector.openState(options.states.front()).show();
  InspectOptions whole = options;
  if (whole.effect.empty()) whole.effect = inspector.usualEffect();
  inspector.openEffect(whole).show();
}

}  // namespace

void runInspector(const InspectOptions& options, int argc, char** argv) {
  checkOptions(options);
  loadEffects(options.python);
  if (options.isBenchmark) return runBenchmark(options, argc, argv);
  prepareWindowSystem(options);
  QApplication application(argc, argv);
  QApplication::setApplicationName("vorto");
  QGuiApplication::setDesktopFileName("org.vorto.Vorto");
  const bool isShown = options.screenshot.empty();
  InspectorApplication inspector(options.appearance, isShown);
  VRTStartEditors();
  if (isShown) {
    openWindows(inspector, options);
    QApplication::exec();
  } else if (options.effect.empty()) {
    writeScreenshot(inspector.openState(options.states.front()), options.screenshot);
  } else {
    shootEffect(inspector, options);
  }
}

}  // namespace host
