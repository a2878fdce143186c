// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Support/GradientScene.h"
#include "Tests/Support/LevelsScene.h"

// Every gesture in every gutter, however it ends and whatever those do who hear of it: each start has one end, from the
// port that was told of the start, and what comes late changes nothing. The sanitizer build sees that nothing dead is
// touched.

namespace {

using MakeScene = std::unique_ptr<EditorScene> (*)();

class Gestures : public testing::TestWithParam<std::pair<const char*, MakeScene>> {
 protected:
  static std::unique_ptr<EditorScene> make() { return GetParam().second(); }
};

template <class Scene, bool kSecond>
std::unique_ptr<EditorScene> makeScene() {
  return std::make_unique<Scene>(kSecond);
}

INSTANTIATE_TEST_SUITE_P(, Gestures,
                         testing::Values(std::pair{"Color", &makeScene<GradientScene, false>},
                                         std::pair{"Opacity", &makeScene<GradientScene, true>},
                                         std::pair{"InputLevels", &makeScene<LevelsScene, false>},
                                         std::pair{"OutputLevels", &makeScene<LevelsScene, true>}),
                         [](const auto& each) { return each.param.first; });

struct Gesture {
  const char* name;
  std::function<void(EditorScene&)> begin;
  std::function<void(EditorScene&)> letGo;
  std::string told;  // by its beginning
  bool byMouse;
};

NSPoint beside(NSPoint point, double points) {
  return {point.x + points, point.y};
}

const Gesture kGestures[] = {
    {"drag",
     [](EditorScene& scene) {
       const NSPoint handle = scene.handle();
       scene.press(handle);
       scene.move(beside(handle, 13));
       scene.move(beside(handle, 26));
     },
     [](EditorScene& scene) { scene.release(); }, "start change change", true},
    {"press on nothing",
     [](EditorScene& scene) {
       const NSPoint nothing = scene.nothing();
       scene.press(nothing);
       scene.move(beside(nothing, 20));
     },
     [](EditorScene& scene) { scene.release(); }, "start", true},
    {"held keys",
     [](EditorScene& scene) {
       scene.focus();
       scene.chooseHandle();
       scene.keyDown(Qt::Key_Right);
       scene.repeatKey(Qt::Key_Right);
       scene.keyDown(Qt::Key_Up);
       scene.keyUp(Qt::Key_Right);
     },
     [](EditorScene& scene) { scene.keyUp(Qt::Key_Up); }, "start change change change", false},
};

enum class Then { Settled, Unsettled, Unheard };

struct Ending {
  const char* name;
  std::function<void(EditorScene&, EditorScene& other, const Gesture&)> act;
  Then then = Then::Settled;
};

const Ending kEndings[] = {
    {"let go", [](auto& scene, auto&, auto& gesture) { gesture.letGo(scene); }},
    {"hidden", [](auto& scene, auto&, auto&) { scene.gutter->hide(); }},
    {"window hidden", [](auto& scene, auto&, auto&) { scene.window->hide(); }},
    {"window closed", [](auto& scene, auto&, auto&) { scene.window->close(); }},
    {"disabled", [](auto& scene, auto&, auto&) { scene.editor->setEnabled(false); }},
    {"window disabled", [](auto& scene, auto&, auto&) { scene.window->setEnabled(false); }},
    {"taken out", [](auto& scene, auto&, auto&) { scene.gutter->setParent(nullptr); }},
    {"keyboard gone",
     [](auto& scene, auto&, auto& gesture) { gesture.byMouse ? gesture.letGo(scene) : scene.gutter->clearFocus(); }},
    {"detached", [](auto& scene, auto&, auto&) { scene.attach(nullptr); }},
    {"another port", [](auto& scene, auto& other, auto&) { scene.attach(&other); }},
    {"editor destroyed", [](auto& scene, auto&, auto&) { delete scene.editor; }, Then::Unsettled},
    {"gutter destroyed", [](auto& scene, auto&, auto&) { delete scene.gutter; }, Then::Unsettled},
    {"port gone",
     [](auto& scene, auto&, auto&) {
       scene.letGoOfPort();
       scene.attach(nullptr);
     },
     Then::Unheard},
};

// What a whole gesture tells.
std::string whole(const EditorScene& scene, const std::string& begun, Then then = Then::Settled) {
  if (then == Then::Unheard) return begun;
  return begun + (scene.settles() && then == Then::Settled ? " change end" : " end");
}

}  // namespace

TEST_P(Gestures, HaveOneEndHoweverTheyEnd) {
  for (const Gesture& gesture : kGestures) {
    for (const Ending& ending : kEndings) {
      SCOPED_TRACE(std::string(gesture.name) + ", " + ending.name);
      const auto scene = make(), other = make();
      gesture.begin(*scene);
      EXPECT_EQ(scene->log, gesture.told);
      ending.act(*scene, *other, gesture);
      QCoreApplication::processEvents();
      EXPECT_EQ(scene->log, whole(*scene, gesture.told, ending.then));
      if (scene->gutter && !scene->gutter->parentWidget()) delete scene->gutter;
      scene->window->show();
      scene->move({80, 5});
      gesture.letGo(*scene);
      EXPECT_EQ(scene->takeLog(), whole(*scene, gesture.told, ending.then)) << "the late end";
      EXPECT_EQ(other->log, "");
      EXPECT_EQ(other->position(), make()->position());
      scene->window->grab();

      if (!scene->editor || !scene->gutter || ending.then == Then::Unheard) continue;
      scene->window->setEnabled(true);
      scene->editor->setEnabled(true);
      scene->attach(scene.get());
      scene->gutter->show();
      scene->port().setValue(scene->newValue());
      scene->takeLog();
      scene->drag(scene->handle(), beside(scene->handle(), 7));
      EXPECT_EQ(scene->takeLog(), whole(*scene, "start change")) << "and it goes on";
    }
  }
}

// Another press ends a gesture; while the button is down keys wait, and so does assistive technology, which is a
// gesture by itself.
TEST_P(Gestures, AreOneAtATime) {
  const auto scene = make();
  for (const Gesture& gesture : kGestures) {
    gesture.begin(*scene);
    const NSEvent press(scene->gutter->convertPointToWindow(scene->nothing()), 0, 1, QPoint());
    scene->gutter->mouseDown(press);
    gesture.letGo(*scene);
    if (!gesture.byMouse) scene->gutter->mouseUp(press);
    EXPECT_EQ(scene->takeLog(), whole(*scene, gesture.told) + " " + whole(*scene, "start"));
    scene->port().setValue(make()->port().value());
    scene->takeLog();
  }
  scene->gutter->setAccessibilityValue(1, 0.4);
  EXPECT_EQ(scene->takeLog(), whole(*scene, "start change"));
  for (const NSPoint place : {scene->handle(), scene->nothing()}) {
    scene->focus();
    scene->press(place);
    scene->chooseHandle();
    scene->key(Qt::Key_Right);
    scene->gutter->setAccessibilityValue(1, 0.3);
    scene->release();
    EXPECT_EQ(scene->takeLog(), whole(*scene, "start"));
  }
}

namespace {

struct Deed {
  const char* name;
  std::function<void(EditorScene&)> act;
};

const Deed kDeeds[] = {
    {"destroys the editor", [](auto& scene) { delete scene.editor; }},
    {"destroys the window", [](auto& scene) { scene.window.reset(); }},
    {"destroys the gutter", [](auto& scene) { delete scene.gutter; }},
    {"detaches the editor", [](auto& scene) { scene.editor ? scene.attach(nullptr) : void(); }},
    {"hides the gutter", [](auto& scene) { scene.gutter ? scene.gutter->hide() : void(); }},
    {"disables the editor", [](auto& scene) { scene.editor ? scene.editor->setEnabled(false) : void(); }},
    {"updates the editor", [](auto& scene) { scene.editor ? scene.updateEditor() : void(); }},
    {"handles events", [](auto&) { QCoreApplication::processEvents(); }},
    {"replaces the value", [](auto& scene) { scene.port().setValue(scene.newValue()); }},
    {"takes the value away", [](auto& scene) { scene.port().setValue(nullptr); }},
};

}  // namespace

// At every notification of every gesture, and at those that come with and after what cuts it short.
TEST_P(Gestures, SurviveWhoeverIsTold) {
  for (const Gesture& gesture : kGestures) {
    for (const Deed& deed : kDeeds) {
      for (const Ending& ending : kEndings) {
        const bool isWhole = &ending == &kEndings[0];
        for (int which = 0; which < (isWhole ? 6 : 2); ++which) {
          SCOPED_TRACE(testing::Message()
                       << gesture.name << ", " << ending.name << ", notification " << which << " " << deed.name);
          const auto scene = make(), other = make();
          const auto tell = [&, told = 0](const std::string&) mutable {
            if (told++ == which) deed.act(*scene);
          };
          if (isWhole) scene->onNote = tell;
          gesture.begin(*scene);
          if (isWhole && gesture.byMouse) scene->move({40, 80});
          if (!isWhole) scene->onNote = tell;
          ending.act(*scene, *other, gesture);
          QCoreApplication::processEvents();
          gesture.letGo(*scene);
          QCoreApplication::processEvents();
          if (scene->gutter && !scene->gutter->parentWidget()) delete scene->gutter;
          if (ending.then == Then::Unheard) continue;
          // Keys that a hidden gutter loses go to the next one, as a gesture of its own.
          EXPECT_EQ(scene->count("end"), scene->count("start")) << scene->log;
          EXPECT_EQ(scene->log.substr(0, 5), "start");
          EXPECT_TRUE(!gesture.byMouse || scene->count("end") == 1) << scene->log;
          if (scene->window) scene->window->grab();
        }
      }
    }
  }
}
