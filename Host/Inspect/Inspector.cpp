// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/Inspector.h"

#include "Editors/VRTEditors.h"
#include "Host/Commands/OptionValues.h"
#include "Host/Files/FileFormat.h"
#include "Host/Files/OutputFile.h"
#include "Host/Inspect/Appearance.h"
#include "Host/Inspect/Benchmark.h"
#include "Host/Inspect/EffectSession.h"
#include "Host/Inspect/EffectWindow.h"
#include "Host/Inspect/Screenshot.h"
#include "Host/Inspect/StateWindow.h"
#include "Host/Inspect/WindowSystem.h"
#include "Host/Messages/Failure.h"

#include <QApplication>

namespace host {
namespace {

void checkOptions(const InspectOptions& options) {
  checkTime(options.time);
  checkRate(options.rate);
  const bool effectOptions = !options.inputs.empty() || !options.values.empty() || !options.framing.size.empty() ||
                             options.time || !options.depth.empty() || !options.frames.empty();
  if (options.effect.empty() && effectOptions) {
    throw Failure(ExitCode::Usage, "without an effect only one --state KIND=FILE can be opened");
  }
  if (options.effect.empty() && options.states.size() != 1) {
    throw Failure(ExitCode::Usage, "give an effect, or one --state KIND=FILE, as in --state gradient=FILE");
  }
  if (options.screenshot.empty()) return;
  fileFormatOf(options.screenshot);
  checkOutput(options.screenshot);
}

void showWindow(QWidget& window, const InspectOptions& options) {
  if (options.screenshot.empty()) {
    window.show();
    QApplication::exec();
  } else {
    writeScreenshot(window, options.screenshot);
  }
}

void inspectState(const InspectOptions& options) {
  const auto document = ParameterDocument::ofState(options.states.front());
  StateWindow window(*document);
  showWindow(window, options);
}

void inspectEffect(const InspectOptions& options) {
  EffectSession session(options);
  session.render();  // what the command line says either works, or is refused as by render
  EffectWindow window(session);
  window.renderNow();
  showWindow(window, options);
}

}  // namespace

void runInspector(const InspectOptions& options, int argc, char** argv) {
  checkOptions(options);
  loadEffects();
  if (options.isBenchmark) return runBenchmark(options, argc, argv);
  prepareWindowSystem(options);
  QApplication application(argc, argv);
  QApplication::setApplicationName("vorto");
  applyAppearance(application, options.appearance);
  VRTStartEditors();
  if (options.effect.empty()) {
    inspectState(options);
  } else {
    inspectEffect(options);
  }
}

}  // namespace host
