// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/EffectWindow.h"

#include "Host/Inspect/ActivityPanel.h"
#include "Host/Inspect/DocumentActions.h"
#include "Host/Inspect/Drops.h"
#include "Host/Inspect/EditorSlot.h"
#include "Host/Inspect/EffectWindowActions.h"
#include "Host/Inspect/FileRole.h"
#include "Host/Inspect/InputList.h"
#include "Host/Inspect/InspectorApplication.h"
#include "Host/Inspect/InspectorColumn.h"
#include "Host/Inspect/MessageBar.h"
#include "Host/Inspect/ParameterSection.h"
#include "Host/Inspect/PreviewTimes.h"
#include "Host/Inspect/WindowText.h"
#include "Host/Messages/Failure.h"
#include "Host/Playback/TimelineBar.h"
#include "Host/Viewer/ReadoutLine.h"
#include "Host/Viewer/Viewer.h"
#include "Host/Viewer/ViewerBar.h"
#include "TarnCore/TCBitmap.h"

#include <QApplication>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <chrono>
#include <utility>

namespace host {
namespace {

QString fileName(const std::string& path) {
  return QFileInfo(QString::fromStdString(path)).fileName();
}

// What the whole picture takes on the screen, in its pixels, as far as it is seen.
PictureSize sizeOnScreen(const Viewer& viewer) {
  const QSizeF view = QSizeF(viewer.size()) * viewer.devicePixelRatioF();
  PictureSize size{static_cast<std::uint32_t>(view.width()), static_cast<std::uint32_t>(view.height())};
  if (!viewer.picture() || viewer.zoom() == 0) return size;
  const auto limited = [&](std::uint32_t side, std::uint32_t most) {
    return std::clamp<std::uint32_t>(static_cast<std::uint32_t>(side * viewer.zoom() + 0.5), 1, most);
  };
  return {limited(viewer.picture()->size.width, size.width), limited(viewer.picture()->size.height, size.height)};
}

}  // namespace

EffectWindow::EffectWindow(const InspectOptions& options, InspectorApplication& application)
    : application_(application),
      inputs_(options.inputs),
      give_([this] { giveParameters(); }),
      viewer_(new Viewer(this)),
      viewerBar_(new ViewerBar(*viewer_, this)),
      readout_(new ReadoutLine(*viewer_, this)),
      messages_(new MessageBar(this)),
      activity_(new ActivityPanel(this)),
      timeline_(new TimelineBar(player_, this)),
      activityButton_(new QToolButton(this)),
      pictureText_(new QLabel(this)) {
  layOut();
  connectPlayer();
  connectViewer();
  restoreChoices();
  makeActions();
  openSession(options, {});
  setAcceptDrops(true);
  viewer_->setFocus();
}

EffectWindow::~EffectWindow() {
  closeSession();
}

void EffectWindow::layOut() {
  auto* center = new QWidget(this);
  auto* left = new QVBoxLayout;
  left->setSpacing(0);
  left->addWidget(viewerBar_);
  left->addWidget(viewer_, 1);
  left->addWidget(readout_);
  left->addWidget(messages_);
  left->addWidget(activity_);
  left->addWidget(timeline_);
  activity_->hide();
  auto* right = new QWidget(center);
  columnPlace_ = new QVBoxLayout(right);
  columnPlace_->setContentsMargins(0, 0, 0, 0);
  auto* row = new QHBoxLayout(center);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(0);
  row->addLayout(left, 1);
  row->addWidget(right);
  setCentralWidget(center);

  activityButton_->setAutoRaise(true);
  activityButton_->setCheckable(true);
  activityButton_->hide();
  QObject::connect(activityButton_, &QToolButton::toggled, activity_, &QWidget::setVisible);
  activity_->setChanged([this] { showActivity(); });
  auto* info = new QWidget(this);
  auto* infoRow = new QHBoxLayout(info);
  infoRow->setContentsMargins(0, 0, 0, 0);
  infoRow->addWidget(activityButton_);
  infoRow->addWidget(pictureText_);
  pictureText_->setForegroundRole(QPalette::PlaceholderText);
  timeline_->setInfo(info);
}

// What belongs to an effect.

void EffectWindow::openSession(const InspectOptions& options, const EffectSession::KeptStates& kept) {
  auto session = std::make_unique<EffectSession>(options);  // throws before anything has changed
  session->setParameterStates(kept);
  closeSession();
  session_ = std::move(session);
  options_ = options;
  roles_ = inputRolesFor(session_->patch(), options.inputs.size());
  actions_ = new DocumentActions(session_->document(), *messages_, *this,
                                 {.valueChanged = [this](QCPort&) { valueChanged(); },
                                  .loaded = [this](QCPort& port) { column_->loaded(port); },
                                  .held =
                                      [this](bool held) {
                                        player_.setHeld(held);
                                        holdPictures();
                                      },
                                  .changed = [this] { updateTitle(); }});
  fillColumn();
  buildMenus();
  listenToEngine();
  startEngine(false);
  application_.preferences().setText("lastEffect", QString::fromStdString(session_->name()));
  updateTitle();
}

void EffectWindow::closeSession() {
  give_.cancel();
  engine_ = nullptr;
  player_.pause();
  player_.setHeld(false);
  delete std::exchange(column_, nullptr);
  delete std::exchange(actions_, nullptr);
  session_.reset();
}

void EffectWindow::fillColumn() {
  column_ = new InspectorColumn(
      *actions_, {QString::fromStdString(session_->name()), QString::fromStdString(session_->description())}, this);
  inputList_ = nullptr;
  if (!roles_.names.isEmpty()) {
    inputList_ = new InputList(roles_.names,
                               {.wanted = [this](std::size_t input) { openDialog(input, false); },
                                .dropped = [this](std::size_t input, const QString& path) { take({path}, input); }});
    column_->setInputs(inputList_);
  }
  columnPlace_->addWidget(column_);
}

void EffectWindow::startEngine(bool isAgain) {
  QStringList shown;
  for (const std::string& path : inputs_) shown.append(QString::fromStdString(path));
  if (inputList_) inputList_->setPaths(shown);
  engine_ = nullptr;
  const bool isComplete = takeInputs();
  if (player_.times().count() > 1)
    place_ = {player_.times().count(), player_.position(), player_.inPoint(), player_.outPoint()};
  player_.pause();
  player_.setTimes(PlaybackTimes());
  viewer_->setPicture(nullptr);
  if (!isComplete) {
    viewer_->setNotice(windowText("Open or drop a picture"), Viewer::NoticeKind::Hint);
    return updateInfo();
  }
  viewer_->setNotice({}, Viewer::NoticeKind::None);
  try {
    if (!session_->isOpen() || isAgain) session_->openInputs(options_);
  } catch (const Failure& failure) {
    return showFailure({.code = failure.code, .text = failure.what()}, true);
  }
  engine_ = &session_->engine();
  engine_->setViewSize(sizeOnScreen(*viewer_));
}

// Of all inputs those that the effect takes, with what was said of them alone. False where one is missing.
bool EffectWindow::takeInputs() {
  const auto needed = static_cast<std::size_t>(roles_.names.size());
  options_.inputs.assign(inputs_.begin(),
                         inputs_.begin() + static_cast<std::ptrdiff_t>(std::min(needed, inputs_.size())));
  std::erase_if(options_.colors.inputs, [this](const std::string& text) {
    const std::size_t equals = text.rfind('=');
    return equals != std::string::npos && std::ranges::count(options_.inputs, text.substr(0, equals)) == 0;
  });
  return options_.inputs.size() == needed && std::ranges::count(options_.inputs, "") == 0;
}

// The same frames as before go on where they were.
void EffectWindow::opened(const PreviewOpened& opened) {
  const auto place = std::exchange(place_, std::nullopt);
  player_.setTimes(playbackTimesOf(opened), opened.start);
  if (!place || place->count != opened.count) return;
  if (place->in != 0 || place->out + 1 != place->count) {
    player_.setInPoint(place->in);
    player_.setOutPoint(place->out);
  }
  player_.goTo(place->position);
}

void EffectWindow::listenToEngine() {
  PreviewEngine::Told told;
  told.opened = [this](const PreviewOpened& opened) { player_.setTimes(playbackTimesOf(opened), opened.start); };
  told.refused = [this](const PreviewFailure& failure) { showFailure(failure, true); };
  told.pictured = [this](const PreviewPictureRef& picture, const VortoHash128& fingerprint) {
    pictured(picture, fingerprint);
  };
  told.counted = [this](const TCHistogram& input, const TCHistogram& result) {
    const PreviewPictureRef& picture = viewer_->picture();
    column_->setCounts(input, result, picture && picture->result ? picture->result->bitsPerChannel : 8);
  };
  told.failed = [this](const PreviewFailure& failure) { showFailure(failure, false); };
  told.busyChanged = [this](const PreviewBusy& busy) { showBusy(busy); };
  told.aheadReady = [this](std::uint64_t frame, const VortoHash128& fingerprint, const PreviewPictureRef& picture) {
    player_.deliver(frame, fingerprint, picture);
  };
  told.aheadFailed = [this](std::uint64_t frame, const VortoHash128& fingerprint, const PreviewFailure& failure) {
    player_.deliverFailure(frame, fingerprint, QString::fromStdString(failure.text));
  };
  told.remarked = [this](const std::string& text) { activity_->addRemark(QString::fromStdString(text)); };
  session_->engine().addListener(std::move(told));
}

void EffectWindow::connectPlayer() {
  player_.listen(
      *this, {.showFrame = [this](std::uint64_t, const PreviewPictureRef& picture) { viewer_->setPicture(picture); },
              .positionChanged = [this] { positionChanged(); },
              .stateChanged = [this] { positionChanged(); },
              .remark = [this](const QString& text) { activity_->addRemark(text); }});
}

void EffectWindow::connectViewer() {
  viewer_->whenChanged(this, [this] {
    if (engine_) engine_->setViewSize(sizeOnScreen(*viewer_));
    updateInfo();
  });
  viewer_->setFullScreenCall([this] { setFullScreen(!isFullScreen()); });
  viewer_->setSpaceCall([this] { player_.togglePlaying(); });
}

// Values and pictures.

void EffectWindow::valueChanged() {
  give_.request();
}

void EffectWindow::giveParameters() {
  if (!engine_) return;
  if (engine_->frame() != player_.position()) engine_->goTo(player_.position());
  engine_->setParameters(session_->document().parameters());
  player_.parametersChanged();
}

void EffectWindow::pictured(const PreviewPictureRef& picture, const VortoHash128& fingerprint) {
  viewer_->setNotice({}, Viewer::NoticeKind::None);
  if (!player_.isPlaying()) viewer_->setPicture(picture);
  if (picture->isFull) player_.deliver(picture->frame, fingerprint, picture);
  updateInfo();
}

// A hand drags: a parameter, or the playhead.
void EffectWindow::holdPictures() {
  if (engine_) engine_->setHeld(session_->document().history().isInteracting() || player_.isScrubbing());
}

// While it plays the player orders what it needs.
void EffectWindow::positionChanged() {
  holdPictures();
  if (engine_ && !player_.isPlaying() && engine_->frame() != player_.position()) engine_->goTo(player_.position());
}

void EffectWindow::showBusy(const PreviewBusy& busy) {
  if (!busy.isBusy) {
    if (viewer_->notice() == Viewer::NoticeKind::Busy) viewer_->setNotice({}, Viewer::NoticeKind::None);
    return;
  }
  const QString text = busy.phase == PreviewPhase::Rendering ? windowText("Rendering\u2026")
                       : busy.phase == PreviewPhase::Reading ? windowText("Reading\u2026")
                                                             : windowText("Starting\u2026");
  const auto cancel = [this] {
    if (engine_) engine_->cancel();
  };
  viewer_->setNotice(text, Viewer::NoticeKind::Busy, cancel, std::chrono::duration<double>(busy.elapsed).count());
}

void EffectWindow::showFailure(const PreviewFailure& failure, bool isRefusal) {
  const QString text = QString::fromStdString(failure.text);
  const bool isCanceled = failure.cause == PreviewFailure::Cause::Cancelled;
  const auto tryAgain = [this, isRefusal] {
    if (isRefusal) return startEngine(true);
    if (engine_) engine_->render();
  };
  viewer_->setNotice(isCanceled ? windowText("Canceled") : text, Viewer::NoticeKind::Failed, tryAgain);
  if (engine_ && !isRefusal) player_.deliverFailure(failure.frame, engine_->fingerprint(), text);
  if (!isCanceled)
    activity_->addFailure(isRefusal ? windowText("Cannot be opened") : windowText("Cannot be rendered"), text);
}

bool EffectWindow::waitForPicture(int milliseconds) {
  if (give_.isPending()) give_.runNow();
  QElapsedTimer waited;
  waited.start();
  const auto isDone = [this] { return !engine_ || (engine_->isSettled() && !give_.isPending()); };
  while (!isDone() && !waited.hasExpired(milliseconds)) {
    QApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
  }
  if (!isDone()) return false;
  viewer_->showNow();
  return true;
}

std::optional<PreviewFailure> EffectWindow::inputProblem() const {
  try {
    checkInputCount(session_->patch(), session_->name(), options_.inputs.size());
    return std::nullopt;
  } catch (const Failure& failure) {
    return PreviewFailure{.code = failure.code, .text = failure.what()};
  }
}

std::optional<PreviewFailure> EffectWindow::failure() const {
  if (!engine_) return inputProblem();
  return engine_->refusal() ? engine_->refusal() : engine_->failure();
}

void EffectWindow::showActivity() {
  const QString summary = activity_->summary();
  activityButton_->setText(summary);
  activityButton_->setAccessibleName(windowText("Activity") + ": " + summary);
  activityButton_->setVisible(!summary.isEmpty());
  if (summary.isEmpty()) activityButton_->setChecked(false);
  timeline_->fit();
  if (isClosing_) closeWhenJobsEnded();
}

void EffectWindow::updateTitle() {
  if (column_) column_->updateTitles();
  QStringList names;
  for (const std::string& path : options_.inputs) names.append(fileName(path));
  setWindowTitle((names.isEmpty() ? QString() : names.join(", ") + " \u2013 ") +
                 QString::fromStdString(session_->name()));
}

void EffectWindow::updateInfo() {
  const PreviewPictureRef& picture = viewer_->picture();
  if (!picture) return pictureText_->clear();
  const QString depth = picture->depth == Depth::Float ? windowText("float")
                        : picture->depth == Depth::Half
                            ? windowText("half")
                            : windowText("%1-bit").arg(picture->depth == Depth::Bits16 ? 16 : 8);
  pictureText_->setText(QStringLiteral("%1 \u00d7 %2   %3   %4 %")
                            .arg(picture->size.width)
                            .arg(picture->size.height)
                            .arg(depth)
                            .arg(viewer_->zoom() * 100, 0, 'f', 0));
  timeline_->fit();
}

// Inputs and effects.

void EffectWindow::chooseEffect(const std::string& name) {
  InspectOptions options = options_;
  options.effect = name;
  options.inputs = inputs_;
  options.values.clear();  // what was set is kept as states
  options.states.clear();
  states_[session_->name()] = session_->parameterStates();
  const auto known = states_.find(name);
  try {
    openSession(options, known == states_.end() ? session_->parameterStates() : known->second);
    messages_->clear();
  } catch (const Failure& failure) {  // before anything has changed
    messages_->show(QString::fromStdString(failure.what()));
  }
}

void EffectWindow::setInput(std::size_t input, const std::string& path) {
  placeInput(input, path);
  openPlaced();
}

void EffectWindow::placeInput(std::size_t input, const std::string& path) {
  if (inputs_.size() <= input) inputs_.resize(input + 1);
  inputs_[input] = path;
  application_.preferences().noteFile(QString::fromStdString(path));
}

void EffectWindow::openPlaced() {
  options_.frames.clear();
  startEngine(true);
  place_.reset();  // other frames than before
  updateTitle();
}

void EffectWindow::take(const QStringList& paths, std::size_t input) {
  const std::size_t first = input;
  messages_->clear();
  for (const QString& path : paths) {
    const std::string name = path.toStdString();
    if (fileRoleOf(name) == FileRole::State) {
      actions_->load(name, actions_->activePort());
      application_.preferences().noteFile(path);
    } else if (input < static_cast<std::size_t>(roles_.names.size())) {
      placeInput(input++, name);
    } else {
      messages_->show(windowText("%1 takes no more pictures.").arg(QString::fromStdString(session_->name())));
    }
  }
  if (input > first) openPlaced();
}

void EffectWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (!droppedFiles(*event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void EffectWindow::dropEvent(QDropEvent* event) {
  event->acceptProposedAction();
  take(droppedFiles(*event->mimeData()));
}

// Space comes here from widgets that have no use for it: buttons press themselves, lists open, fields take it as text.
void EffectWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape && isFullScreen()) return setFullScreen(false);
  if (event->key() != Qt::Key_Space || event->modifiers() != Qt::NoModifier) return QMainWindow::keyPressEvent(event);
  if (!event->isAutoRepeat()) player_.togglePlaying();
}

void EffectWindow::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() == QEvent::WindowStateChange) showFullScreenParts();
}

}  // namespace host
