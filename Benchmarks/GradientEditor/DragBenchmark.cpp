// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/BenchmarkTable.h"
#include "Channels/VRTChannelGradient.h"
#include "GradientEditor/VRTGradientEditor.h"
#include "GradientEditor/VRTGradientEditorLayout.h"
#include "GradientEditor/VRTGradientGutterRGB.h"
#include "Ports/VRTObjects.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QMouseEvent>
#include <QWindow>
#include <vector>

// A drag in the gradient editor: from one movement of the mouse to the finished paint of the whole panel. Beside it,
// how long the gradients that one paint shows take to evaluate.

namespace {

struct Application {
  Application() {
    static int count = 1;
    static char name[] = "bench";
    static char* arguments[] = {name, nullptr};
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!qApp) new QApplication(count, arguments);  // for all benchmarks
  }
};

class PaintCounter : public QObject {
 public:
  bool eventFilter(QObject*, QEvent* event) override {
    paints += event->type() == QEvent::Paint;
    return false;
  }
  int paints = 0;
};

struct Scene {
  Scene(int stops, int panelWidth) : port(std::make_shared<VRTGradientPort>("inputGradient")), width(panelWidth) {
    const auto value = VRTGradient::gradient();
    VRTChannelGradient& channel = *value->kxChannelGradient();
    for (int i = 1; i < stops - 1; ++i) {
      const double place = static_cast<double>(i) / (stops - 1);
      channel.rgbFolder.addSample(place, 1 - place, 0.5, place, 0.4, VRTGradientSmooth);
      channel.alphaFolder.addSample(0.5 + place / 2, place, 0.6, VRTGradientSmooth);
    }
    port->setValue(value);
    window.resize(width, 75);
    editor = new VRTGradientEditor(NSMakeRect(0, 0, width, 76), &window);
    editor->setGradientPort(port.get());
    editor->setEnabled(true);
    gutter = dynamic_cast<VRTGradientGutter*>(editor->findChild<QWidget*>("gradientGutterRGB"));
    gutter->installEventFilter(&counter);
    window.show();
    while (!window.windowHandle()->isExposed() || counter.paints == 0) {
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
    }
    x = static_cast<int>(VRTGradientGutterGeometry(gutter->bounds()).xOfPosition(1.0 / (stops - 1)));
    send(QEvent::MouseButtonPress, x);
  }

  void send(QEvent::Type type, int at) {
    const QPointF place(at, 20);
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, place, gutter->mapToGlobal(place), button, Qt::LeftButton, {});
    QApplication::sendEvent(gutter, &event);
  }

  bool dragOnce() {
    const int before = counter.paints;
    send(QEvent::MouseMove, x + (++moves % 2));
    QCoreApplication::sendPostedEvents();
    return counter.paints == before + 1;
  }

  Application application;
  std::shared_ptr<VRTGradientPort> port;
  int width;
  PaintCounter counter;
  QWidget window;
  VRTGradientEditor* editor = nullptr;
  VRTGradientGutter* gutter = nullptr;
  int x = 0;
  int moves = 0;
};

void drag(benchmark::State& state, int stops, int width) {
  Scene scene(stops, width);
  for (auto _ : state) {
    if (!scene.dragOnce()) return state.SkipWithError("not painted once per movement");
  }
}

void evaluate(benchmark::State& state, int stops, int width) {
  const Scene scene(stops, width);
  const VRTGradientEditorLayout layout(width, true);
  const auto preview = static_cast<std::uint32_t>(layout.preview.size.width - 4);
  const auto strip = static_cast<std::uint32_t>(layout.gutterRGB.size.width - 10);
  std::vector<std::uint8_t> row(static_cast<std::size_t>(width) * 4);
  VRTChannelGradient& channel = *scene.editor->getGradientChannel();
  for (auto _ : state) {
    for (const std::uint32_t count : {preview, strip, strip}) channel.getGradient(0.0, row.data(), count);
    benchmark::DoNotOptimize(row.data());
  }
}

const bool registered = [] {
  for (const int width : {236, 1200}) {
    for (const int stops : {8, 32}) {
      const std::string row = std::to_string(stops) + " stops, " + std::to_string(width) + " points";
      const std::string table = "Drag in the gradient editor, event to finished paint";
      benchmark::RegisterBenchmark(benchmarkName(table, row, "vorto").c_str(), [=](benchmark::State& state) {
        drag(state, stops, width);
      })->Unit(benchmark::kMicrosecond);
      benchmark::RegisterBenchmark(benchmarkName(table, row, "evaluation alone").c_str(), [=](benchmark::State& state) {
        evaluate(state, stops, width);
      })->Unit(benchmark::kMicrosecond);
    }
  }
  return true;
}();

}  // namespace
