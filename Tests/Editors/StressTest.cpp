// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Support/GradientScene.h"
#include "Tests/Support/LevelsScene.h"

#include <QAbstractButton>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QMimeData>
#include <cstdio>
#include <random>
#include <tuple>

// Random events in the editors, and observers that do anything at all at every notification. A round is made from its
// seed alone. By hand, for long under the sanitizers, with the seed of every round on standard error:
//   VORTO_STRESS_SECONDS=600 VORTO_STRESS_SEED=1 test-Editors --gtest_filter='Stress*'

namespace {

class Round : public VRTGradientEditorDelegate {
 public:
  explicit Round(unsigned seed) : random_(seed) {
    if (chance(2)) {
      make<GradientScene, VRTGradientGutterRGB, VRTGradientGutterAlpha>();
      if (chance(2)) dynamic_cast<GradientScene&>(*scene_).editorPart().setDelegate(this);
    } else {
      make<LevelsScene, VRTHistogramGutterIn, VRTHistogramGutterOut>();
    }
    first_ = scene_->port().stateValue();
    scene_->onNote = [this](const std::string&) { react(); };
    for (const char* name : {kVRTColorPickerDidOpen, kVRTColorPickerDidClose}) {
      observations_.push_back(
          NSNotificationCenter::defaultCenter().addObserver(name, nullptr, [this](const NSNotification&) { react(); }));
    }
  }

  // Everything dies in the end; what was started has ended then.
  void run() {
    for (int left = number(80); left > 0; --left) oneOf(events_)();
    depth_ = kDeepest;
    if (auto* picker = VRTTransientColorPicker::current()) picker->cancel();
    for (const QPointer<NSTarnView>& part : {scene_->editor, parts_[0], parts_[1]}) {
      if (part && !part->parentWidget()) delete part;
    }
    scene_->window.reset();
    QCoreApplication::processEvents();
    EXPECT_LE(scene_->count("start"), scene_->count("end")) << scene_->log;
    EXPECT_FALSE(scene_->log.ends_with("start")) << scene_->log;
  }

  void setSelectedSample(VRTChannelGradientSample*, bool, bool) override { react(); }
  void updateSelectedSampleRGBFrom(VRTTransientColorPicker*) override { react(); }
  void updateSelectedSampleAlphaFrom(VRTTransientColorPicker*) override { react(); }

 private:
  using Deeds = std::vector<std::function<void()>>;
  static constexpr int kDeepest = 3;

  int number(int below) { return int(random_() % unsigned(below)); }
  bool chance(int of) { return number(of) == 0; }
  const Deeds::value_type& oneOf(const Deeds& deeds) { return deeds[std::size_t(number(int(deeds.size())))]; }
  template <class Each>
  Each oneOf(std::initializer_list<Each> some) {
    return some.begin()[number(int(some.size()))];
  }

  template <class Scene, class First, class Second>
  void make() {
    auto scene = std::make_unique<Scene>(chance(2));
    parts_[0] = scene->template part<First>();
    parts_[1] = scene->template part<Second>();
    scene_ = std::move(scene);
  }
  void react() {
    if (depth_ >= kDeepest || !chance(4)) return;
    ++depth_;
    oneOf(chance(3) ? events_ : deeds_)();
    --depth_;
  }

  NSTarnView* part() {
    if (const auto& any = parts_[number(2)]) scene_->gutter = any;
    return scene_->gutter;
  }
  NSPoint place() {
    const double width = part() ? scene_->gutter->width() - 10 : 200;
    const double row = chance(8) ? number(160) - 80 : number(24);
    return {5 + std::round(width * oneOf({0.0, 0.25, 0.5, 0.6, 1.0, number(100) / 100.0})) + number(3) - 1, row};
  }
  Qt::KeyboardModifiers modifiers() {
    return chance(2) ? Qt::NoModifier : oneOf({Qt::ShiftModifier, Qt::ControlModifier, Qt::AltModifier});
  }
  Qt::MouseButton button() { return chance(3) ? Qt::RightButton : Qt::LeftButton; }
  int key() {
    return oneOf({Qt::Key_Right, Qt::Key_Left, Qt::Key_Up, Qt::Key_Home, Qt::Key_End, Qt::Key_PageDown, Qt::Key_Delete,
                  Qt::Key_Return, Qt::Key_Escape, Qt::Key_Shift, Qt::Key_Tab, Qt::Key_Backtab});
  }
  void mouse(QEvent::Type type, QWidget* widget, QPointF at, Qt::MouseButton button, Qt::MouseButtons held) {
    QMouseEvent event(type, at, widget->mapToGlobal(at), button, held, modifiers());
    QApplication::sendEvent(widget, &event);
  }
  void pick() {
    const QPointer<QWidget> panel = VRTTransientColorPicker::panel();
    if (!panel) return;
    const QPointF at(number(180) - 10, number(120) - 10);
    if (chance(12)) return panel->hide();
    if (chance(12)) return VRTTransientColorPicker::current()->cancel();
    mouse(QEvent::MouseMove, panel, at, Qt::NoButton, chance(2) ? Qt::LeftButton : Qt::NoButton);
    if (panel && chance(3)) mouse(QEvent::MouseButtonPress, panel, at, Qt::LeftButton, Qt::LeftButton);
    if (panel && chance(3)) mouse(QEvent::MouseButtonRelease, panel, at, Qt::LeftButton, {});
    QKeyEvent typed(QEvent::KeyPress, key(), modifiers());
    if (panel && chance(3)) QApplication::sendEvent(panel, &typed);
  }
  void drop() {
    QMimeData data;
    data.setColorData(QColor(Qt::red));
    const QPoint at(number(220), number(26));
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, {});
    if (part()) QApplication::sendEvent(scene_->gutter, &enter);
    QDropEvent dropped(at, Qt::CopyAction, &data, Qt::LeftButton, {});
    if (scene_->gutter) QApplication::sendEvent(scene_->gutter, &dropped);
  }
  void clickButton() {
    const char* name = oneOf({"rgbSpread", "rgbFlop", "alphaSpread", "alphaFlop"});
    auto* found = scene_->window ? qobject_cast<QAbstractButton*>(scene_->part(name)) : nullptr;
    if (found) found->click();
  }

  const Deeds events_ = {
      [this] { scene_->press(place(), modifiers(), button()); },
      [this] { scene_->press(place()); },
      [this] { scene_->move(place()); },
      [this] { scene_->move(place()); },
      [this] { scene_->release(modifiers(), button()); },
      [this] { scene_->release(); },
      [this] {
        part() ? mouse(QEvent::MouseButtonDblClick, scene_->gutter, {5, 20}, button(), button()) : void();
      },
      [this] { scene_->keyDown(key(), modifiers()); },
      [this] { scene_->keyUp(key()); },
      [this] { scene_->repeatKey(key()); },
      [this] { part() ? part()->setFocus() : void(); },
      [this] { pick(); },
      [this] { pick(); },
      [this] { drop(); },
      [this] { clickButton(); },
      [this] { part() ? scene_->gutter->setAccessibilityValue(std::size_t(number(5)), number(11) / 10.0) : void(); },
      [this] { QCoreApplication::processEvents(); },
      [this] { oneOf(deeds_)(); },
  };
  const Deeds deeds_ = {
      [this] {
        if (chance(3)) delete scene_->editor;
      },
      [this] {
        if (chance(3)) delete part();
      },
      [this] { chance(3) ? scene_->window.reset() : void(); },
      [this] { scene_->editor ? scene_->attach(chance(2) ? scene_.get() : nullptr) : void(); },
      [this] { part() ? scene_->gutter->setVisible(chance(2)) : void(); },
      [this] { scene_->window ? scene_->window->setVisible(!chance(3)) : void(); },
      [this] { scene_->window ? void(scene_->window->close()) : void(); },
      [this] { scene_->window ? scene_->window->setEnabled(!chance(3)) : void(); },
      [this] { scene_->editor ? scene_->editor->setEnabled(!chance(3)) : void(); },
      [this] { part() ? part()->clearFocus() : void(); },
      [this] { part() ? part()->setParent(nullptr) : void(); },
      [this] { scene_->editor ? scene_->editor->setParent(nullptr) : void(); },
      [this] { scene_->editor && scene_->window ? scene_->window->addSubview(*scene_->editor) : void(); },
      [this] {
        scene_->editor ? scene_->editor->setFrameSize({150.0 + number(200), 75}) : void();
      },
      [this] { scene_->editor ? scene_->updateEditor() : void(); },
      [this] { scene_->port().setValue(chance(2) ? scene_->newValue() : nullptr); },
      [this] { scene_->port().setStateValue(PropertyList(scene_->port().stateValue().value_or(*first_)), nullptr); },
      [this] { scene_->port().setStateValue(*first_, nullptr); },
      [this] { QCoreApplication::processEvents(); },
  };

  std::mt19937 random_;
  int depth_ = 0;
  std::unique_ptr<EditorScene> scene_;
  QPointer<NSTarnView> parts_[2];
  std::optional<PropertyList> first_;
  std::vector<NSNotificationCenter::Observation> observations_;
};

}  // namespace

TEST(Stress, EditorsSurviveRandomEventsAndWhoeverIsTold) {
  constexpr int kRounds = 200;
  const auto silence = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  const int seconds = qEnvironmentVariableIntValue("VORTO_STRESS_SECONDS");
  auto seed = unsigned(qEnvironmentVariableIntValue("VORTO_STRESS_SEED"));
  QElapsedTimer elapsed;
  elapsed.start();
  for (int rounds = 0; seconds ? elapsed.elapsed() < seconds * 1000 : rounds < kRounds; ++rounds, ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    if (seconds) std::fprintf(stderr, "seed %u\n", seed);
    Round(seed).run();
    if (testing::Test::HasFailure()) break;
  }
  // Animations that still run belong to nobody.
  std::ignore = QTest::qWaitFor([] { return QApplication::topLevelWidgets().isEmpty(); }, 1000);
  qInstallMessageHandler(silence);
}
