// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Support/GradientScene.h"
#include "Tests/Support/LevelsScene.h"

// Every gesture in every gutter, however it ends and whatever those do who hear of it: each start has one end, from the
// port that was told of the start, and what comes late changes nothing. The sanitizer build sees that nothing dead is
// touched.

namespace {

struct GutterKind {
  const char* name;
  std::function<std::unique_ptr<EditorScene>()> make;
};

class Gestures : public testing::TestWithParam<GutterKind> {
 protected:
  std::unique_ptr<EditorScene> make() const { return GetParam().make(); }
};

INSTANTIATE_TEST_SUITE_P(, Gestures,
                         testing::Values(GutterKind{"Color", [] { return std::make_unique<GradientScene>(false); }},
                                         GutterKind{"Opacity", [] { return std::make_unique<GradientScene>(true); }},
                                         GutterKind{"InputLevels", [] { return std::make_unique<LevelsScene>(false); }},
                                         GutterKind{"OutputLevels",
                                                    [] { return std::make_unique<LevelsScene>(true); }}),
                         [](const auto& each) { return each.param.name; });

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

struct Ending {
  const char* name;
  std::function<void(EditorScene&, const Gesture&)> end;
  bool settles = true;
};

const Ending kEndings[] = {
    {"let go", [](EditorScene& scene, const Gesture& gesture) { gesture.letGo(scene); }},
    {"hidden", [](EditorScene& scene, const Gesture&) { scene.gutter->hide(); }},
    {"window hidden", [](EditorScene& scene, const Gesture&) { scene.window->hide(); }},
    {"detached", [](EditorScene& scene, const Gesture&) { scene.attach(nullptr); }},
    {"editor destroyed", [](EditorScene& scene, const Gesture&) { delete scene.editor; }, false},
    {"gutter destroyed", [](EditorScene& scene, const Gesture&) { delete scene.gutter; }, false},
};

// What a whole gesture tells.
std::string whole(const EditorScene& scene, const std::string& begun, bool settled = true) {
  return begun + (scene.settles() && settled ? " change end" : " end");
}

}  // namespace

TEST_P(Gestures, HaveOneEndHoweverTheyEnd) {
  for (const Gesture& gesture : kGestures) {
    for (const Ending& ending : kEndings) {
      SCOPED_TRACE(std::string(gesture.name) + ", " + ending.name);
      const auto scene = make();
      gesture.begin(*scene);
      EXPECT_EQ(scene->log, gesture.told);
      ending.end(*scene, gesture);
      EXPECT_EQ(scene->log, whole(*scene, gesture.told, ending.settles));
      if (std::string(ending.name) == "window hidden") scene->window->show();
      gesture.letGo(*scene);
      EXPECT_EQ(scene->takeLog(), whole(*scene, gesture.told, ending.settles)) << "the late end";

      if (!scene->editor || !scene->gutter) continue;
      scene->attach(scene.get());
      scene->gutter->show();
      scene->port().setValue(scene->newValue());
      scene->takeLog();
      const NSPoint handle =
          scene->settles() ? NSPoint{dynamic_cast<GradientScene&>(*scene).xOf(0.1), 5} : scene->handle();
      scene->drag(handle, beside(handle, 7));
      EXPECT_EQ(scene->takeLog(), whole(*scene, "start change")) << "and it goes on";
    }
  }
}

TEST_P(Gestures, MoveWhatTheyHold) {
  const auto scene = make();
  const double before = scene->position();
  kGestures[0].begin(*scene);
  EXPECT_GT(scene->position(), before + 0.09);
  EXPECT_LT(scene->position(), before + 0.14);
  scene->move(beside(scene->handle(), -500));
  EXPECT_EQ(scene->position(), 0);
  scene->release();
  const double moved = scene->position();
  scene->move(beside(scene->handle(), 60));
  EXPECT_EQ(scene->position(), moved) << "nothing is held";
}

// A second gesture begins before the first has ended: the first is ended for it.
TEST_P(Gestures, EndBeforeTheNextBegins) {
  for (const Gesture& gesture : kGestures) {
    SCOPED_TRACE(gesture.name);
    const auto scene = make();
    gesture.begin(*scene);
    scene->takeLog();
    const NSEvent press(scene->gutter->convertPointToWindow(scene->nothing()), 0, 1, QPoint());
    scene->gutter->mouseDown(press);
    EXPECT_EQ(scene->takeLog(), scene->settles() ? "change end start" : "end start");
    gesture.letGo(*scene);
    if (!gesture.byMouse) scene->gutter->mouseUp(press);
    EXPECT_EQ(scene->takeLog(), scene->settles() ? "change end" : "end");
  }
}

TEST_P(Gestures, OfKeysEndWithTheKeyboard) {
  const auto scene = make();
  kGestures[2].begin(*scene);
  scene->takeLog();
  scene->focus(scene->editor);
  scene->gutter->clearFocus();
  EXPECT_EQ(scene->takeLog(), scene->settles() ? "change end" : "end");
  scene->focus();
  scene->keyUp(Qt::Key_Up);
  EXPECT_EQ(scene->takeLog(), "");
}

// While the button is down keys wait, and so does assistive technology, which is one gesture by itself.
TEST_P(Gestures, AreOneAtATime) {
  const auto scene = make();
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

TEST_P(Gestures, GoOnTellingTheirPortWhenItIsReplaced) {
  for (const Gesture& gesture : kGestures) {
    SCOPED_TRACE(gesture.name);
    const auto scene = make(), other = make();
    gesture.begin(*scene);
    scene->attach(other.get());
    const double before = other->position();
    scene->move(beside(scene->handle(), 60));
    gesture.letGo(*scene);
    EXPECT_EQ(scene->takeLog(), whole(*scene, gesture.told));
    EXPECT_EQ(other->takeLog(), "");
    EXPECT_EQ(other->position(), before);
  }
}

TEST_P(Gestures, SurviveThePort) {
  for (const Gesture& gesture : kGestures) {
    const auto scene = make();
    gesture.begin(*scene);
    scene->letGoOfPort();
    scene->attach(nullptr);
    gesture.letGo(*scene);
    scene->window->grab();
  }
}

namespace {

struct Deed {
  const char* name;
  std::function<void(EditorScene&)> act;
};

const Deed kDeeds[] = {
    {"destroys the editor", [](EditorScene& scene) { delete scene.editor; }},
    {"destroys the gutter", [](EditorScene& scene) { delete scene.gutter; }},
    {"detaches the editor",
     [](EditorScene& scene) {
       if (scene.editor) scene.attach(nullptr);
     }},
    {"hides the gutter",
     [](EditorScene& scene) {
       if (scene.gutter) scene.gutter->hide();
     }},
    {"replaces the value", [](EditorScene& scene) { scene.port().setValue(scene.newValue()); }},
    {"takes the value away", [](EditorScene& scene) { scene.port().setValue(nullptr); }},
};

}  // namespace

// At every notification of every gesture, with the button or the keys let go in the end.
TEST_P(Gestures, SurviveWhoeverIsTold) {
  for (const Gesture& gesture : kGestures) {
    for (const Deed& deed : kDeeds) {
      for (int which = 0; which < 6; ++which) {
        SCOPED_TRACE(std::string(gesture.name) + ", notification " + std::to_string(which) + " " + deed.name);
        const auto scene = make();
        int told = 0;
        scene->onNote = [&](const std::string&) {
          if (told++ == which) deed.act(*scene);
        };
        gesture.begin(*scene);
        if (gesture.byMouse) scene->move({40, 80});
        gesture.letGo(*scene);
        // Keys that a hidden gutter loses go to the next one, as a gesture of its own.
        EXPECT_EQ(scene->count("end"), scene->count("start")) << scene->log;
        EXPECT_EQ(scene->log.substr(0, 5), "start");
        if (gesture.byMouse) EXPECT_EQ(scene->count("end"), 1u) << scene->log;
        QCoreApplication::processEvents();
        scene->window->grab();
      }
    }
  }
}

// A detaching editor tells of the end; whoever hears it destroys the editor.
TEST_P(Gestures, EndWithTheirEditorInTheMiddleOfDetaching) {
  for (const Gesture& gesture : kGestures) {
    const auto scene = make();
    gesture.begin(*scene);
    scene->onNote = [&](const std::string&) { delete scene->editor; };
    scene->attach(nullptr);
    EXPECT_TRUE(scene->editor.isNull());
    EXPECT_EQ(scene->count("end"), 1u) << scene->log;
  }
}
