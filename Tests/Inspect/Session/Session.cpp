// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelGradient.h"
#include "Controls/VRTTransientColorPicker.h"
#include "Editors/VRTEditors.h"
#include "Host/Files/ProgramFolder.h"
#include "Host/Inspect/ActivityPanel.h"
#include "Host/Inspect/DocumentActions.h"
#include "Host/Inspect/EffectWindow.h"
#include "Host/Inspect/InspectorApplication.h"
#include "Host/Inspect/InspectorColumn.h"
#include "Host/Inspect/MessageBar.h"
#include "Host/Inspect/ParameterSection.h"
#include "Host/Inspect/PresetPart.h"
#include "Host/Inspect/PresetTray.h"
#include "Host/Playback/PlaybackActions.h"
#include "Host/Playback/TimelineBar.h"
#include "Host/Rendering/Effects.h"
#include "Host/Viewer/Viewer.h"
#include "Host/Viewer/ViewerActions.h"
#include "Tests/Inspect/Session/WatchedApplication.h"

#include <QAction>
#include <QClipboard>
#include <QDialog>
#include <QDir>
#include <QDropEvent>
#include <QFile>
#include <QLineEdit>
#include <QMenuBar>
#include <QMimeData>
#include <QMouseEvent>
#include <QProcess>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <QUrl>
#include <cstdio>
#include <filesystem>

// A session of somebody who works with the inspector: everything that is done in it, on a clip, a large float picture
// and a 16-bit TIFF, with a picture of the window after each step, and how long the longest event of the step took.
//
//   inspector-session MATERIALS PICTURES [small]
//
// MATERIALS is a folder for the files that are opened, which are made there when they are missing; "small" makes small
// ones. It fails when something did not happen, and when an event took more than 50 ms.

namespace {

using host::EffectWindow;

constexpr int kPatience = 120000;
constexpr double kMostMilliseconds = 50;

int failures = 0;
int longEvents = 0;

void check(bool holds, const char* what) {
  if (holds) return;
  std::printf("FAILED: %s\n", what);
  ++failures;
}

bool run(const QString& program, const QStringList& arguments) {
  QProcess process;
  process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  process.start(program, arguments);
  return process.waitForFinished(kPatience) && process.exitCode() == 0;
}

// What people bring along.
struct Materials {
  QString clip, big, deep;

  Materials(const QString& folder, bool small) {
    QDir().mkpath(folder);
    clip = folder + "/street.mp4";
    big = folder + "/sky.exr";
    deep = folder + "/scan.tif";
    const QString vorto = QString::fromStdString(host::hostProgram());
    const QString photos = VORTO_PHOTOS;
    const QString size = small ? "320x180" : "1920x1080";
    if (!QFile::exists(clip)) {
      check(run("ffmpeg", {"-y",
                           "-loglevel",
                           "error",
                           "-loop",
                           "1",
                           "-i",
                           photos + "/coffee.png",
                           "-f",
                           "lavfi",
                           "-i",
                           "sine=440",
                           "-t",
                           small ? "1" : "4",
                           "-vf",
                           "zoompan=z='1+0.004*on':d=1:fps=25:s=" + size,
                           "-pix_fmt",
                           "yuv420p",
                           "-c:a",
                           "aac",
                           clip}),
            "a clip is made");
    }
    if (!QFile::exists(big)) {
      check(run(vorto, {"render", "Levels", "--input", photos + "/chelsea.png", "--size",
                        small ? "768x432" : "7680x4320", "--depth", "float", "--output", big}),
            "a float picture is made");
    }
    if (!QFile::exists(deep)) {
      check(run(vorto, {"render", "Levels", "--input", photos + "/rocket.jpg", "--size",
                        small ? "400x266" : "2400x1600", "--depth", "16", "--output", deep}),
            "a 16-bit picture is made");
    }
  }
};

class Session {
 public:
  Session(WatchedApplication& application, const Materials& materials, QString pictures)
      : application_(application), materials_(materials), pictures_(std::move(pictures)) {
    QDir().mkpath(pictures_);
  }

  void runAll() {
    begin();
    levels();
    view();
    compare();
    largeFloats();
    clip();
    gradients();
    presets();
    effectsAndWindows();
    exports();
    failuresAreSaid();
    closeInTheMiddle();
  }

 private:
  // The end of a step: a picture, and the longest event since the one before.
  void step(const QString& name, QWidget* shown = nullptr) {
    QTest::qWait(50);
    const WatchedApplication::Longest longest = application_.takeLongest();
    std::printf("%-28s longest event %6.1f ms  %s\n", name.toUtf8().constData(), longest.milliseconds,
                longest.milliseconds > 20 ? longest.what.toUtf8().constData() : "");
    std::fflush(stdout);
    if (longest.milliseconds > kMostMilliseconds) {
      std::printf("TOO LONG\n");
      ++longEvents;
    }
    window_->viewer().showNow();
    QWidget* of = shown ? shown : window_;
    check(
        of->grab().save(QStringLiteral("%1/%2-%3.png").arg(pictures_).arg(++steps_, 2, 10, QLatin1Char('0')).arg(name)),
        "a picture is saved");
    application_.takeLongest();  // that of the picture is none of the person's
  }
  void settle() {
    QTest::qWait(30);
    check(window_->waitForPicture(kPatience), "a picture comes");
    check(!window_->failure(), "without a failure");
  }
  bool waitUntil(const std::function<bool()>& holds) { return QTest::qWaitFor(holds, kPatience); }
  void drop(QWidget& on, const QStringList& paths) {
    QMimeData data;
    QList<QUrl> urls;
    for (const QString& path : paths) urls.append(QUrl::fromLocalFile(path));
    data.setUrls(urls);
    QDragEnterEvent enter({20, 20}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&on, &enter);
    QDropEvent event({20, 20}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&on, &event);
  }
  QAction* action(const QString& text) {
    for (QAction* each : window_->findChildren<QAction*>()) {
      if (QString(each->text()).remove('&') == text) return each;
    }
    for (QAction* each : window_->viewer().actions()) {
      if (QString(each->text()).remove('&') == text) return each;
    }
    check(false, text.toUtf8().constData());
    static QAction none;
    return &none;
  }
  template <class Widget>
  Widget* named(const QString& name) {
    for (auto* widget : window_->findChildren<Widget*>()) {
      if (widget->accessibleName() == name && widget->isVisible()) return widget;
    }
    check(false, name.toUtf8().constData());
    return nullptr;
  }
  // Classes of ours have no meta object to be found by.
  template <class Widget>
  Widget* part() {
    for (auto* widget : window_->findChildren<QWidget*>()) {
      if (auto* found = dynamic_cast<Widget*>(widget)) return found;
    }
    check(false, typeid(Widget).name());
    return nullptr;
  }
  QCPort& parameter(std::size_t index = 0) { return *window_->session().document().parameters().at(index); }
  // A drag in so many moves, with the pictures that come meanwhile.
  void drag(QWidget* widget, QPoint from, QPoint to, int moves) {
    QTest::mousePress(widget, Qt::LeftButton, {}, from);
    for (int i = 1; i <= moves; ++i) {
      QTest::mouseMove(widget, from + (to - from) * i / moves);
      QTest::qWait(8);
    }
    QTest::mouseRelease(widget, Qt::LeftButton, {}, to);
  }
  void pointAt(QPoint place) {
    QMouseEvent move(QEvent::MouseMove, QPointF(place), window_->viewer().mapToGlobal(QPointF(place)), Qt::NoButton, {},
                     {});
    QCoreApplication::sendEvent(&window_->viewer(), &move);
  }
  void set(const std::function<void(host::ViewSettings&)>& change) {
    host::ViewSettings settings = window_->viewer().settings();
    change(settings);
    window_->viewer().setSettings(settings);
  }

  void begin() {
    host::InspectOptions options;
    options.effect = "Levels";
    window_ = &inspector_.openEffect(options);
    window_->resize(1400, 880);
    window_->show();
    QTest::qWait(200);
    step("empty");
    drop(*window_, {materials_.deep});
    settle();
    step("tiff");
  }

  void levels() {
    auto* gutter = window_->findChild<QWidget*>("gutterIn");
    check(gutter, "the levels editor has a gutter");
    const QPoint white(gutter->width() - 6, gutter->height() - 5);
    drag(gutter, white, white - QPoint(70, 0), 20);
    settle();
    step("levels-dragged");
    auto* gamma = named<QLineEdit>("Gamma");
    if (gamma) {
      gamma->setFocus();
      gamma->selectAll();
      QTest::keyClicks(gamma, "4/3");
      QTest::keyClick(gamma, Qt::Key_Return);
    }
    settle();
    step("levels-typed");
    window_->actions().undoAction->trigger();
    window_->actions().undoAction->trigger();
    settle();
    check(!window_->actions().undoAction->isEnabled(), "a drag and a number are a step each");
    window_->actions().redoAction->trigger();
    settle();
  }

  void view() {
    set([](host::ViewSettings& settings) {
      settings.zoomMode = host::ZoomMode::Factor;
      settings.zoom = 1;
    });
    step("view-one-to-one");
    set([](host::ViewSettings& settings) { settings.zoom = 64; });
    QTest::qWait(200);
    pointAt(window_->viewer().rect().center());
    step("view-64-with-grid");
    set([](host::ViewSettings& settings) {
      settings.zoomMode = host::ZoomMode::Fit;
      settings.channels = host::ChannelView::Red;
    });
    step("view-red");
    set([](host::ViewSettings& settings) { settings.channels = host::ChannelView::Luminance; });
    step("view-luminance");
    set([](host::ViewSettings& settings) {
      settings.channels = host::ChannelView::Color;
      settings.exposure = 1;
    });
    step("view-exposure");
    set([](host::ViewSettings& settings) { settings.exposure = 0; });
  }

  void compare() {
    set([](host::ViewSettings& settings) { settings.compare = host::CompareMode::Split; });
    step("compare-split");
    QWidget& viewer = window_->viewer();
    drag(&viewer, viewer.rect().center(), viewer.rect().center() - QPoint(150, 0), 15);
    pointAt(viewer.rect().center() + QPoint(40, 30));
    step("compare-split-moved");
    set([](host::ViewSettings& settings) { settings.compare = host::CompareMode::Result; });
    window_->viewer().toggleFullScreen();
    QTest::qWait(300);
    step("full-screen");
    window_->viewer().toggleFullScreen();
    QTest::qWait(300);
  }

  void largeFloats() {
    drop(*window_, {materials_.big});
    settle();
    step("large-floats");
    auto* gutter = window_->findChild<QWidget*>("gutterIn");
    const QPoint black(6, gutter->height() - 5);
    drag(gutter, black, black + QPoint(60, 0), 40);
    step("large-floats-dragged");
    settle();
    set([](host::ViewSettings& settings) { settings.display.kind = host::DisplayChoice::Kind::Off; });
    step("large-floats-as-they-are");
    set([](host::ViewSettings& settings) { settings.display.kind = host::DisplayChoice::Kind::Standard; });
  }

  void clip() {
    window_->actions().resetAction->trigger();
    drop(*window_, {materials_.clip});
    settle();
    host::Player& player = window_->player();
    check(player.times().count() > 10, "the clip's frames are known");
    window_->timeline().playbackActions().everyFrame->trigger();
    QTest::keyClick(window_, Qt::Key_Space);
    check(player.isPlaying(), "space plays");
    check(waitUntil([&] { return player.shownCount() > 20; }), "frames are shown");
    step("clip-playing");
    player.pause();
    player.setInPoint(5);
    player.setOutPoint(player.times().last() - 4);
    player.goTo(12);
    settle();
    step("clip-range-and-cache");
    window_->timeline().playbackActions().realTime->trigger();
    player.play();
    QTest::qWait(800);
    step("clip-real-time");
    player.pause();
  }

  void gradients() {
    window_->chooseEffect("Gradient Map");
    settle();
    step("gradient-map");
    QApplication::clipboard()->setText("linear-gradient(90deg, #101830, #b03060 45%, #ffd080 80%, #fff8e8)");
    host::ParameterSection* section = window_->column().section(parameter());
    section->paste();
    settle();
    step("gradient-pasted");
    auto* gutter = window_->findChild<QWidget*>("gradientGutterRGB");
    const int y = gutter->height() - 6;
    QTest::mouseClick(gutter, Qt::LeftButton, {}, QPoint(5 + (gutter->width() - 10) * 45 / 100, y));
    step("gradient-stop-selected");
    drag(gutter, QPoint(5 + (gutter->width() - 10) * 45 / 100, y), QPoint(gutter->width() / 4, y), 25);
    settle();
    step("gradient-stop-dragged");
  }

  void presets() {
    auto* presets = part<host::PresetPart>();
    if (!presets) return;
    presets->setOpen(true);
    window_->column().verticalScrollBar()->setValue(window_->column().verticalScrollBar()->maximum());
    QTest::qWait(300);
    step("presets");
    auto* field = presets->tray()->findChild<QLineEdit*>();
    QTest::keyClicks(field, "sepia");
    QTest::qWait(200);
    step("presets-searched");
    const auto before = *parameter().stateValue();
    QTest::keyClick(field, Qt::Key_Down);
    QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : field, Qt::Key_Return);
    settle();
    check(*parameter().stateValue() != before, "a preset is applied");
    step("presets-applied");
    presets->setOpen(false);
  }

  void effectsAndWindows() {
    action("Choose Effect\u2026")->trigger();
    QTest::qWait(150);
    for (auto* dialog : window_->findChildren<QDialog*>()) {
      if (!dialog->isVisible()) continue;
      step("choose-effect", dialog);
      dialog->reject();
    }
    action("Keyboard Shortcuts")->trigger();
    QTest::qWait(150);
    for (auto* dialog : window_->findChildren<QDialog*>()) {
      if (!dialog->isVisible()) continue;
      step("shortcuts", dialog);
      dialog->reject();
    }
    inspector_.setAppearance(host::InspectorApplication::Appearance::Light);
    QTest::qWait(150);
    step("light");
    inspector_.setAppearance(host::InspectorApplication::Appearance::Dark);
    host::InspectOptions options;
    options.effect = "Dissolve";
    options.inputs = {materials_.deep.toStdString(), materials_.big.toStdString()};
    EffectWindow* first = window_;
    window_ = &inspector_.openEffect(options);
    window_->show();
    window_->setAttribute(Qt::WA_DeleteOnClose);
    settle();
    window_->player().goTo(400);
    settle();
    step("second-window-transition");
    window_->close();
    window_ = first;
    QTest::qWait(100);
  }

  void exports() {
    action("Export\u2026")->trigger();
    QTest::qWait(200);
    for (auto* dialog : window_->findChildren<QDialog*>()) {
      if (!dialog->isVisible()) continue;
      step("export", dialog);
      dialog->reject();
    }
    const QString out = pictures_ + "/out.mkv";
    QFile::remove(out);
    window_->startJob(out, {"--codec", "ffv1", "--fps", "2000", "--size", "1920x1080"});
    check(waitUntil([&] { return window_->activity().runningJobs() == 1; }), "an export runs");
    QTest::qWait(400);
    step("export-running");
    window_->activity().cancelJobs();
    check(waitUntil([&] { return window_->activity().runningJobs() == 0; }), "and can be canceled");
    check(!QFile::exists(out), "without a file");
    window_->saveFrame(pictures_ + "/saved-frame.png");
    check(waitUntil([&] { return window_->activity().runningJobs() == 0; }), "a picture is saved");
    check(QFile::exists(pictures_ + "/saved-frame.png"), "as a file");
    QFile::remove(pictures_ + "/saved-frame.png");
    step("saved");
  }

  void failuresAreSaid() {
    const QString broken = pictures_ + "/broken.png";
    QFile file(broken);
    check(file.open(QIODevice::WriteOnly), "a broken file is made");
    file.write("no picture");
    file.close();
    drop(*window_, {broken});
    check(waitUntil([&] { return window_->failure().has_value(); }), "a failure is said");
    QTest::qWait(100);
    step("failed");
    file.remove();
    drop(*window_, {materials_.deep});
    settle();
    step("goes-on");
  }

  // Windows that close while they open, render, play, decode.
  void closeInTheMiddle() {
    for (const int milliseconds : {0, 1, 5, 20, 60, 120, 250}) {
      for (const QString& input : {materials_.big, materials_.clip}) {
        host::InspectOptions options;
        options.effect = "Levels";
        options.inputs = {input.toStdString()};
        EffectWindow& closing = inspector_.openEffect(options);
        closing.show();
        QTest::qWait(milliseconds);
        if (milliseconds > 100) closing.player().play();
        closing.close();
        QTest::qWait(0);
      }
    }
    step("windows-closed");
  }

  WatchedApplication& application_;
  const Materials& materials_;
  const QString pictures_;
  host::InspectorApplication inspector_{"dark", false};
  EffectWindow* window_ = nullptr;
  int steps_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  WatchedApplication application(argc, argv);
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() < 3) return 2;
  const Materials materials(arguments[1], arguments.contains("small"));
  host::loadEffects();
  VRTStartEditors();
  // A machine may halt for a moment, which is no fault of the program: what takes too long does so twice.
  for (int attempt = 0; attempt < 2 && (attempt == 0 || longEvents > 0); ++attempt) {
    longEvents = 0;
    Session(application, materials, arguments[2]).runAll();
  }
  check(longEvents == 0, "no event took more than 50 ms");
  std::printf("%s\n", failures == 0 ? "all as it should be" : "not all as it should be");
  return failures == 0 ? 0 : 1;
}
