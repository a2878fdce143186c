// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/ViewerActions.h"

#include "Host/Inspect/WindowText.h"
#include "Host/Viewer/Viewer.h"

#include <QAction>
#include <algorithm>

namespace host {
namespace {

constexpr double kExposureStep = 0.5;
constexpr double kGammaStep = 0.1;
constexpr double kPanStep = 0.1;
constexpr double kSplitStep = 0.02;

void expose(ViewSettings& settings, double stops) {
  settings.exposure = std::clamp(settings.exposure + stops, -ViewSettings::kMostExposure, ViewSettings::kMostExposure);
}

void addGamma(ViewSettings& settings, double step) {
  settings.gamma = std::clamp(settings.gamma + step, ViewSettings::kLeastGamma, ViewSettings::kMostGamma);
}

}  // namespace

ViewerActions::ViewerActions(Viewer& viewer) : QObject(&viewer), viewer_(viewer) {
  addZoom();
  addMoves();
  addCompare();
  addChannels();
  addColors();
  addGround();
  update();
}

void ViewerActions::beginGroup(const char* title) {
  groups_.push_back({windowText(title), {}});
}

QAction* ViewerActions::add(const char* text, const QList<QKeySequence>& keys, const std::function<void()>& done) {
  auto* action = new QAction(windowText(text), this);
  action->setShortcuts(keys);
  QObject::connect(action, &QAction::triggered, this, done);
  viewer_.addAction(action);
  groups_.back().actions.append(action);
  return action;
}

QAction* ViewerActions::addChange(const char* text, const QList<QKeySequence>& keys, const Change& change) {
  return add(text, keys, [this, change] {
    ViewSettings settings = viewer_.settings();
    change(settings);
    viewer_.setSettings(settings);
  });
}

QAction* ViewerActions::addChoice(const char* text, const QList<QKeySequence>& keys, const Change& change,
                                  const std::function<bool(const ViewSettings&)>& isChosen) {
  QAction* action = addChange(text, keys, change);
  action->setCheckable(true);
  choices_.push_back({action, isChosen});
  return action;
}

void ViewerActions::update() {
  for (const Choice& choice : choices_) choice.action->setChecked(choice.isChosen(viewer_.settings()));
}

void ViewerActions::addZoom() {
  beginGroup("Zoom");
  const auto mode = [this](const char* text, const QList<QKeySequence>& keys, ZoomMode zoomMode) {
    return addChoice(
        text, keys, [zoomMode](ViewSettings& settings) { settings.zoomMode = zoomMode; },
        [zoomMode](const ViewSettings& settings) { return settings.zoomMode == zoomMode; });
  };
  fit = mode("Fit", {Qt::Key_F}, ZoomMode::Fit);
  mode("Fill", {Qt::SHIFT | Qt::Key_F}, ZoomMode::Fill);
  actualSize = add("Actual Pixels", {Qt::Key_1, Qt::CTRL | Qt::Key_1}, [this] { viewer_.zoomTo(1); });
  add("Zoom In", {Qt::Key_Plus, Qt::Key_Equal, Qt::CTRL | Qt::Key_Plus, Qt::CTRL | Qt::Key_Equal},
      [this] { viewer_.stepZoom(true); });
  add("Zoom Out", {Qt::Key_Minus, Qt::CTRL | Qt::Key_Minus}, [this] { viewer_.stepZoom(false); });
  addChoice(
      "Pixel Grid", {Qt::SHIFT | Qt::Key_G}, [](ViewSettings& settings) { settings.pixelGrid = !settings.pixelGrid; },
      [](const ViewSettings& settings) { return settings.pixelGrid; });
  fullScreen = add("Full Screen", {Qt::Key_F11}, [this] { viewer_.toggleFullScreen(); });
}

void ViewerActions::addMoves() {
  beginGroup("Move");
  struct Move {
    const char* text;
    Qt::Key key;
    int right, down;
  };
  for (const Move& move : {Move{"Look Left", Qt::Key_Left, -1, 0}, Move{"Look Right", Qt::Key_Right, 1, 0},
                           Move{"Look Up", Qt::Key_Up, 0, -1}, Move{"Look Down", Qt::Key_Down, 0, 1}}) {
    add(move.text, {move.key}, [this, move] {
      viewer_.pan(kPanStep * move.right, kPanStep * move.down);
    })->setShortcutContext(Qt::WidgetShortcut);
  }
}

void ViewerActions::addCompare() {
  beginGroup("Compare");
  const auto mode = [this](const char* text, const QList<QKeySequence>& keys, CompareMode compare) {
    addChoice(
        text, keys,
        [compare](ViewSettings& settings) {
          settings.compare = settings.compare == compare ? CompareMode::Result : compare;
        },
        [compare](const ViewSettings& settings) { return settings.compare == compare; });
  };
  mode("Result", {}, CompareMode::Result);
  mode("Split", {Qt::Key_S}, CompareMode::Split);
  mode("Before", {Qt::SHIFT | Qt::Key_X}, CompareMode::Before);
  QAction* peek = add("See Before While Held", {Qt::Key_X}, [this] { viewer_.setPeeking(true); });
  peek->setAutoRepeat(false);
  addChoice(
      "Split Above and Below", {Qt::SHIFT | Qt::Key_S},
      [](ViewSettings& settings) {
        settings.splitDirection =
            settings.splitDirection == SplitDirection::Stacked ? SplitDirection::SideBySide : SplitDirection::Stacked;
      },
      [](const ViewSettings& settings) { return settings.splitDirection == SplitDirection::Stacked; });
  const auto moveSplit = [this](const char* text, const QList<QKeySequence>& keys, double step) {
    addChange(text, keys, [step](ViewSettings& settings) {
      settings.split = std::clamp(settings.split + step, 0.0, 1.0);
    })->setShortcutContext(Qt::WidgetShortcut);
  };
  moveSplit("Less Before", {Qt::ALT | Qt::Key_Left, Qt::ALT | Qt::Key_Up}, -kSplitStep);
  moveSplit("More Before", {Qt::ALT | Qt::Key_Right, Qt::ALT | Qt::Key_Down}, kSplitStep);
}

void ViewerActions::addChannels() {
  beginGroup("Channels");
  struct Channel {
    const char* text;
    Qt::Key key;
    ChannelView channels;
  };
  for (const Channel& channel :
       {Channel{"Color", Qt::Key_C, ChannelView::Color}, Channel{"Red", Qt::Key_R, ChannelView::Red},
        Channel{"Green", Qt::Key_G, ChannelView::Green}, Channel{"Blue", Qt::Key_B, ChannelView::Blue},
        Channel{"Alpha", Qt::Key_A, ChannelView::Alpha}, Channel{"Luminance", Qt::Key_L, ChannelView::Luminance}}) {
    const ChannelView view = channel.channels;
    addChoice(
        channel.text, {channel.key},
        [view](ViewSettings& settings) { settings.channels = settings.channels == view ? ChannelView::Color : view; },
        [view](const ViewSettings& settings) { return settings.channels == view; });
  }
}

void ViewerActions::addColors() {
  beginGroup("Exposure and Display");
  addChange("Brighter", {Qt::Key_E}, [](ViewSettings& settings) { expose(settings, kExposureStep); });
  addChange("Darker", {Qt::SHIFT | Qt::Key_E}, [](ViewSettings& settings) { expose(settings, -kExposureStep); });
  addChange("More Gamma", {Qt::Key_Y}, [](ViewSettings& settings) { addGamma(settings, kGammaStep); });
  addChange("Less Gamma", {Qt::SHIFT | Qt::Key_Y}, [](ViewSettings& settings) { addGamma(settings, -kGammaStep); });
  addChange("Reset Exposure and Gamma", {Qt::ALT | Qt::Key_E}, [](ViewSettings& settings) {
    settings.exposure = 0;
    settings.gamma = 1;
  });
  addChoice(
      "Show Values as They Are", {Qt::Key_T},
      [](ViewSettings& settings) {
        const bool isOff = settings.display.kind == DisplayChoice::Kind::Off;
        const bool hasView = !settings.display.view.empty();
        settings.display.kind = !isOff    ? DisplayChoice::Kind::Off
                                : hasView ? DisplayChoice::Kind::View
                                          : DisplayChoice::Kind::Standard;
      },
      [](const ViewSettings& settings) { return settings.display.kind == DisplayChoice::Kind::Off; });
}

void ViewerActions::addGround() {
  beginGroup("Behind Transparency");
  struct Named {
    const char* text;
    Ground ground;
  };
  for (const Named& choice :
       {Named{"Checkerboard", Ground::Checkerboard}, Named{"Black", Ground::Black}, Named{"Gray", Ground::Gray},
        Named{"White", Ground::White}, Named{"Own Color", Ground::Color}}) {
    const Ground ground = choice.ground;
    addChoice(
        choice.text, {}, [ground](ViewSettings& settings) { settings.ground = ground; },
        [ground](const ViewSettings& settings) { return settings.ground == ground; });
  }
  addChange("Next Ground", {Qt::SHIFT | Qt::Key_A}, [](ViewSettings& settings) {
    constexpr int count = 5;
    settings.ground = static_cast<Ground>((static_cast<int>(settings.ground) + 1) % count);
  });
}

}  // namespace host
