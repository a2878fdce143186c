// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Commands/InspectOptions.h"
#include "Host/Inspect/CoalescedCall.h"
#include "Host/Inspect/EffectSession.h"
#include "Host/Inspect/EngineFrames.h"
#include "Host/Inspect/InputRoles.h"
#include "Host/Inspect/ShortcutPage.h"
#include "Host/Playback/Player.h"

#include <QEventLoopLocker>
#include <QMainWindow>
#include <QPointer>
#include <map>
#include <memory>
#include <optional>

class QLabel;
class QToolButton;
class QVBoxLayout;

namespace host {

class ActivityPanel;
class DocumentActions;
class InputList;
class InspectorApplication;
class InspectorColumn;
class MessageBar;
class TimelineBar;
class Viewer;

// An effect's full inspector: the picture, which is rendered again after every change, time, and the column of inputs
// and parameters. Nothing here waits for a picture: processes beside it read and render (PreviewEngine).
//
// Viewer, player and the parts of the window stay as long as it does; what belongs to an effect is made anew when
// another one is chosen.
class EffectWindow : public QMainWindow {
 public:
  // Throws Failure for an effect that is not there and parameters that do not fit it. `application` outlives it.
  EffectWindow(const InspectOptions& options, InspectorApplication& application);
  ~EffectWindow() override;

  EffectSession& session() { return *session_; }
  Viewer& viewer() { return *viewer_; }
  Player& player() { return player_; }
  TimelineBar& timeline() { return *timeline_; }
  MessageBar& messages() { return *messages_; }
  ActivityPanel& activity() { return *activity_; }
  InspectorColumn& column() { return *column_; }
  DocumentActions& actions() { return *actions_; }
  const InspectOptions& options() const { return options_; }

  // Another effect. The inputs stay, those that it does not take too, for the next one. It has the values that it was
  // left with in this window; where it is new, its first ones, but for parameters of the same kind and key as the
  // effect before has. What cannot be is shown, and nothing changes.
  void chooseEffect(const std::string& name);
  // A picture, pattern or clip in the place of an input. Those that nobody sees are kept too.
  void setInput(std::size_t input, const std::string& path);
  // What was dropped or opened: a state goes to its parameter, the first picture to `input`, others to those after it.
  void take(const QStringList& paths, std::size_t input = 0);

  // Processes that write files while the window goes on: the frame that is looked at, in a picture; and any more of
  // "vorto render" with the present effect, inputs and parameters.
  void saveFrame(const QString& path);
  void startJob(const QString& output, const QStringList& arguments);

  // Until the newest full picture is there, or it failed; events are handled. False after so many milliseconds.
  bool waitForPicture(int milliseconds);
  std::optional<PreviewFailure> failure() const;  // why there is no picture of the present state

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  // What a window shows of one effect.
  void openSession(const InspectOptions& options, const EffectSession::KeptStates& kept);
  void closeSession();
  void listenToEngine();
  void startEngine(bool isAgain);  // that inputs are to be opened, also when they are
  bool takeInputs();
  void opened(const PreviewOpened& opened);
  void placeInput(std::size_t input, const std::string& path);
  void openPlaced();
  void connectPlayer();
  void connectViewer();
  void layOut();
  void makeActions();
  void buildMenus();
  void fillColumn();
  void restoreChoices();
  void rememberChoices();

  void valueChanged();
  void giveParameters();
  void pictured(const PreviewPictureRef& picture, const VortoHash128& fingerprint);
  void positionChanged();
  void holdPictures();
  void showBusy(const PreviewBusy& busy);
  void showFailure(const PreviewFailure& failure, bool isRefusal);
  void showActivity();
  std::optional<PreviewFailure> inputProblem() const;
  void updateTitle();
  void updateInfo();

  InspectOptions optionsOfJobs(const QStringList& arguments) const;
  void openDialog(std::size_t input, bool asSequence);
  QString saveFolder() const;
  void savePicture();
  void exportFrames();
  void closeWhenJobsEnded();
  void setFullScreen(bool on);
  void showFullScreenParts();
  void showShortcuts();
  void fillRecent(QMenu& menu);
  void fillEffects(QMenu& menu);
  void fillWindows(QMenu& menu);
  void fillAppearance(QMenu& menu);

  InspectorApplication& application_;
  InspectOptions options_;           // of the effect that is shown, with the inputs that it takes
  std::vector<std::string> inputs_;  // all that were opened, by place
  InputRoles roles_;
  std::map<std::string, EffectSession::KeptStates> states_;  // of the effects that were left, by their names

  PreviewEngine* engine_ = nullptr;  // the session's; null while inputs are missing
  EngineFrames frames_{engine_};
  Player player_{frames_};
  std::unique_ptr<EffectSession> session_;
  CoalescedCall give_;
  struct Place {
    std::uint64_t count, position, in, out;
  };
  std::optional<Place> place_;  // in the frames that were played before the engine began anew

  Viewer* viewer_;
  QWidget* viewerBar_;
  QWidget* readout_;
  MessageBar* messages_;
  ActivityPanel* activity_;
  TimelineBar* timeline_;
  QToolButton* activityButton_;
  QLabel* pictureText_;
  QVBoxLayout* columnPlace_ = nullptr;
  InspectorColumn* column_ = nullptr;
  InputList* inputList_ = nullptr;
  DocumentActions* actions_ = nullptr;

  struct Actions;
  std::unique_ptr<Actions> own_;
  QList<ShortcutGroup> shortcuts_;
  QPointer<QWidget> shortcutPage_;
  std::optional<QEventLoopLocker> jobsKeepRunning_;
  bool isClosing_ = false;
};

}  // namespace host
