// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/EffectWindowActions.h"

#include "Host/Files/FileFormat.h"
#include "Host/Inspect/ActivityPanel.h"
#include "Host/Inspect/DocumentActions.h"
#include "Host/Inspect/EffectChooser.h"
#include "Host/Inspect/ExportDialog.h"
#include "Host/Inspect/FileRole.h"
#include "Host/Inspect/InspectorApplication.h"
#include "Host/Inspect/InspectorColumn.h"
#include "Host/Inspect/MessageBar.h"
#include "Host/Inspect/PlaybackChoices.h"
#include "Host/Inspect/RenderArguments.h"
#include "Host/Inspect/RenderJob.h"
#include "Host/Inspect/WindowMenus.h"
#include "Host/Inspect/WindowText.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Json.h"
#include "Host/Playback/PlaybackActions.h"
#include "Host/Playback/TimelineBar.h"
#include "Host/Viewer/Viewer.h"
#include "Host/Viewer/ViewerActions.h"

#include <QActionGroup>
#include <QCloseEvent>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

namespace host {
namespace {

QString filter(const char* title, const char* patterns) {
  return windowText(title) + " (" + patterns + ")";
}

QString inputFilter() {
  return filter("Pictures and clips",
                "*.png *.jpg *.jpeg *.tif *.tiff *.exr *.hdr *.webp *.heic *.avif *.jp2 *.dpx *.tga *.bmp *.mp4 *.mov "
                "*.mkv *.webm *.avi *.mxf *.ts *.m4v");
}

QString openFilter() {
  return inputFilter() + ";;" + filter("States", "*.plist *.gradient *.levels *.inks *.ggr *.svg *.cpt") + ";;" +
         filter("All files", "*");
}

QString stemOf(const std::string& path) {
  return QFileInfo(QString::fromStdString(path)).completeBaseName().section('%', 0, 0).remove('.');
}

}  // namespace

void EffectWindow::makeActions() {
  own_ = std::make_unique<Actions>();
  Actions& own = *own_;
  own.newWindow = newWindowAction(*this, "New Window", QKeySequence::New,
                                  [this] { actions_->tried([&] { application_.openEffect(options_).show(); }); });
  own.open = newWindowAction(*this, "Open\u2026", QKeySequence::Open, [this] { openDialog(0, false); });
  own.openSequence = newWindowAction(*this, "Open Sequence\u2026", QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_O),
                                     [this] { openDialog(0, true); });
  own.savePicture =
      newWindowAction(*this, "Save Picture\u2026", QKeySequence(Qt::CTRL | Qt::Key_E), [this] { savePicture(); });
  own.exportFrames = newWindowAction(*this, "Export\u2026", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_E),
                                     [this] { exportFrames(); });
  own.close = newWindowAction(*this, "Close Window", QKeySequence(Qt::CTRL | Qt::Key_W), [this] { close(); });
  own.chooseEffect = newWindowAction(*this, "Choose Effect\u2026", QKeySequence(Qt::CTRL | Qt::Key_K), [this] {
    auto* chooser = new EffectChooser(
        session_->name(), [this](const std::string& name) { chooseEffect(name); }, this);
    chooser->show();
  });
  own.showInspector = newWindowAction(*this, "Show Parameters", QKeySequence(Qt::CTRL | Qt::Key_I), [this] {
    columnPlace_->parentWidget()->setVisible(own_->showInspector->isChecked());
  });
  own.showInspector->setCheckable(true);
  own.showInspector->setChecked(true);
  own.showActivity = newWindowAction(*this, "Show Activity", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_A),
                                     [this] { activityButton_->toggle(); });
  own.cancelRender = newWindowAction(*this, "Cancel Rendering", QKeySequence(Qt::CTRL | Qt::Key_Period), [this] {
    if (engine_) engine_->cancel();
  });
  own.renderAgain = newWindowAction(*this, "Render Again", QKeySequence::Refresh, [this] { startEngine(true); });
  own.shortcuts = newWindowAction(*this, "Keyboard Shortcuts", QKeySequence(Qt::Key_F1), [this] { showShortcuts(); });
  own.about = newWindowAction(*this, "About Vorto", {}, [this] {
    QMessageBox::about(this, "Vorto",
                       windowText("Vorto %1\nEffects and their parameters, rendered live.").arg(VORTO_VERSION));
  });
}

void EffectWindow::buildMenus() {
  const Actions& own = *own_;
  menuBar()->clear();
  shortcuts_.clear();
  shortcuts_ += addMenu(*this, windowText("&File"),
                        {{own.newWindow, own.open, own.openSequence,
                          newSubMenu(*this, "Open Recent", [this](QMenu& menu) { fillRecent(menu); })},
                         {actions_->openAction, actions_->saveAction, actions_->saveAsAction},
                         {own.savePicture, own.exportFrames},
                         {own.close, actions_->quitAction}});
  shortcuts_ +=
      addMenu(*this, windowText("&Edit"), {{actions_->undoAction, actions_->redoAction}, {actions_->resetAction}});
  shortcuts_ += addMenu(*this, windowText("E&ffect"),
                        {{own.chooseEffect, newSubMenu(*this, "Effects", [this](QMenu& menu) { fillEffects(menu); })},
                         {own.renderAgain, own.cancelRender}});
  QList<QList<QAction*>> view;
  for (const ViewerActions::Group& group : viewer_->viewerActions().groups()) view.append(group.actions);
  view.append(QList<QAction*>{own.showInspector, own.showActivity});
  view.append(QList<QAction*>{newSubMenu(*this, "Appearance", [this](QMenu& menu) { fillAppearance(menu); })});
  shortcuts_ += addMenu(*this, windowText("&View"), view);
  shortcuts_ += addMenu(*this, windowText("&Playback"), {timeline_->playbackActions().all()});
  addMenu(*this, windowText("&Window"), {{newSubMenu(*this, "Windows", [this](QMenu& menu) { fillWindows(menu); })}});
  shortcuts_ += addMenu(*this, windowText("&Help"), {{own.shortcuts, own.about}});
}

void EffectWindow::showShortcuts() {
  if (!shortcutPage_) shortcutPage_ = new ShortcutPage(shortcuts_ + editorShortcuts(), this);
  shortcutPage_->show();
  shortcutPage_->raise();
}

void EffectWindow::fillRecent(QMenu& menu) {
  for (const QString& path : application_.preferences().recentFiles()) {
    QAction* action = menu.addAction(QFileInfo(path).fileName());
    action->setToolTip(path);
    action->setStatusTip(path);
    QObject::connect(action, &QAction::triggered, this, [this, path] { take({path}); });
  }
  if (menu.isEmpty()) {
    menu.addAction(windowText("Nothing yet"))->setEnabled(false);
    return;
  }
  menu.addSeparator();
  QObject::connect(menu.addAction(windowText("Forget Them")), &QAction::triggered, this,
                   [this] { application_.preferences().forgetRecentFiles(); });
}

void EffectWindow::fillEffects(QMenu& menu) {
  for (const EffectKind kind : kEffectKinds) {
    const auto names = effectNames(kind);
    if (names.empty()) continue;
    QMenu* ofKind = menu.addMenu(effectKindTitle(kind));
    for (const std::string& name : names) {
      QAction* action = ofKind->addAction(QString::fromStdString(name));
      action->setCheckable(true);
      action->setChecked(name == session_->name());
      QObject::connect(action, &QAction::triggered, this, [this, name] { chooseEffect(name); });
    }
  }
}

void EffectWindow::fillWindows(QMenu& menu) {
  for (QWidget* window : application_.windows()) {
    QAction* action = menu.addAction(QString(window->windowTitle()).remove("[*]"));
    action->setCheckable(true);
    action->setChecked(window == this);
    QObject::connect(action, &QAction::triggered, window, [window] {
      window->raise();
      window->activateWindow();
    });
  }
}

void EffectWindow::fillAppearance(QMenu& menu) {
  using Appearance = InspectorApplication::Appearance;
  const std::pair<const char*, Appearance> choices[] = {
      {"As the Desktop", Appearance::Desktop}, {"Light", Appearance::Light}, {"Dark", Appearance::Dark}};
  for (const auto& [text, appearance] : choices) {
    QAction* action = menu.addAction(windowText(text));
    action->setCheckable(true);
    action->setChecked(application_.appearance() == appearance);
    QObject::connect(action, &QAction::triggered, this,
                     [this, chosen = appearance] { application_.setAppearance(chosen); });
  }
}

// Files.

void EffectWindow::openDialog(std::size_t input, bool asSequence) {
  const QString folder = application_.preferences().text("openFolder");
  const QStringList paths =
      QFileDialog::getOpenFileNames(this, asSequence ? windowText("Open a picture of a sequence") : windowText("Open"),
                                    folder, asSequence ? inputFilter() : openFilter());
  if (paths.isEmpty()) return;
  application_.preferences().setText("openFolder", QFileInfo(paths[0]).absolutePath());
  if (!asSequence) return take(paths, input);
  const auto pattern = sequenceAround(paths[0].toStdString());
  if (!pattern) {
    return messages_->show(
        windowText("%1: no other picture with a number beside it").arg(QFileInfo(paths[0]).fileName()));
  }
  take({QString::fromStdString(*pattern)}, input);
}

// Where something was saved last, at first beside the first input.
QString EffectWindow::saveFolder() const {
  QString last = application_.preferences().text("saveFolder");
  if (!last.isEmpty() && QFileInfo(last).isDir()) return last;
  return options_.inputs.empty() ? QDir::homePath()
                                 : QFileInfo(QString::fromStdString(options_.inputs[0])).absolutePath();
}

void EffectWindow::savePicture() {
  if (!engine_) return messages_->show(windowText("There is no picture to save."));
  const QString folder = saveFolder();
  const QString path = QFileDialog::getSaveFileName(this, windowText("Save Picture"),
                                                    folder + '/' + QString::fromStdString(session_->name()) + ".png",
                                                    windowText("Pictures (*.png *.jpg *.jpeg *.tif *.tiff *.exr)"));
  if (path.isEmpty()) return;
  application_.preferences().setText("saveFolder", QFileInfo(path).absolutePath());
  saveFrame(path);
}

// The frame that is looked at, as "vorto render" writes it.
void EffectWindow::saveFrame(const QString& path) {
  if (!actions_->tried([&] { fileFormatOf(path.toStdString()); })) return;
  const auto& opened = engine_->opened();
  if (!opened) return messages_->show(windowText("There is no picture to save."));
  const std::uint64_t frame = player_.position();
  QStringList arguments;
  if (opened->timing == PreviewOpened::Timing::Frames) {  // one of all, so that its time is that among all
    arguments << "--frames"
              << QStringLiteral("%1-%2x1").arg(opened->firstNumber).arg(opened->firstNumber + opened->count - 1)
              << "--chunk" << QString::number(frame + 1);
  } else if (opened->timing == PreviewOpened::Timing::Steps) {
    const bool isFirst = options_.time && frame == opened->start;
    const double time = isFirst ? *options_.time : static_cast<double>(frame) / static_cast<double>(opened->count - 1);
    arguments << "--time" << QString::fromStdString(numberText(time));
  }
  startJob(path, arguments);
}

void EffectWindow::exportFrames() {
  const auto opened = engine_ ? engine_->opened() : std::nullopt;
  if (!opened) return messages_->show(windowText("There is nothing to export."));
  Exportable what;
  what.first = opened->firstNumber;
  what.count = opened->count;
  what.isOpenEnded = opened->timing != PreviewOpened::Timing::Frames;
  if (player_.hasRange() && !what.isOpenEnded) {
    what.chosen = {{what.first + static_cast<std::uint32_t>(player_.inPoint()),
                    what.first + static_cast<std::uint32_t>(player_.outPoint())}};
  }
  for (const PreviewInput& input : opened->inputs)
    what.hasAudio = what.hasAudio || (input.clip && input.clip->hasAudio);
  what.name = options_.inputs.empty() ? QString::fromStdString(session_->name()) : stemOf(options_.inputs[0]);
  for (const std::string& path : options_.inputs) what.inputs.append(QString::fromStdString(path));
  what.name += '-' + QString::fromStdString(session_->name()).toLower().replace(' ', '-');
  auto* dialog = new ExportDialog(
      what, saveFolder(),
      [this](const QString& output, const QStringList& arguments) {
        application_.preferences().setText("saveFolder", QFileInfo(output).absolutePath());
        startJob(output, arguments);
      },
      this);
  dialog->open();
}

// What the window shows, for jobs: without what they say themselves, and what does not fit these inputs.
InspectOptions EffectWindow::optionsOfJobs(const QStringList& arguments) const {
  InspectOptions options = options_;
  const auto& opened = session_->engine().opened();
  if (arguments.contains("--depth")) options.depth.clear();
  const bool isTransition = opened && opened->timing == PreviewOpened::Timing::Steps;
  if (isTransition) options.time.reset();
  bool hasClip = false;
  bool hasSequence = false;
  for (const PreviewInput& input : opened ? opened->inputs : std::vector<PreviewInput>()) {
    hasClip = hasClip || input.clip;
    hasSequence = hasSequence || input.kind == Inputs::Kind::Sequence;
  }
  if (hasClip && !hasSequence) options.rate.reset();
  return options;
}

void EffectWindow::startJob(const QString& output, const QStringList& arguments) {
  actions_->tried([&] {
    auto files = std::make_unique<QTemporaryDir>();
    if (!files->isValid())
      throw Failure(ExitCode::Output, "cannot make a folder: " + files->errorString().toStdString());
    QStringList all =
        renderArguments(optionsOfJobs(arguments), session_->patch(), session_->document(), files->path().toStdString());
    if (!options_.frames.empty() && !arguments.contains("--frames")) {
      all << "--frames" << QString::fromStdString(options_.frames);
    }
    all += arguments;
    activity_->addJob(QFileInfo(output).fileName(), [&](const std::function<void()>& told) {
      return std::make_unique<RenderJob>(all, output, std::move(files), RenderJob::Told{told, told});
    });
    activityButton_->setChecked(true);
  });
}

// Full screen shows the picture alone.
void EffectWindow::setFullScreen(bool on) {
  setWindowState(on ? windowState() | Qt::WindowFullScreen : windowState() & ~Qt::WindowFullScreen);
}

void EffectWindow::showFullScreenParts() {
  const bool rest = !isFullScreen();
  menuBar()->setVisible(rest);
  viewerBar_->setVisible(rest);
  readout_->setVisible(rest);
  timeline_->setVisible(rest);
  columnPlace_->parentWidget()->setVisible(rest && own_->showInspector->isChecked());
  viewer_->setFocus();
}

// What is remembered.

void EffectWindow::restoreChoices() {
  const Preferences& preferences = application_.preferences();
  resize(1280, 800);
  restoreGeometry(preferences.bytes("window"));
  viewer_->setSettings(settingsFromText(preferences.text("viewer").toStdString()));
  setPlaybackChoices(player_, preferences.text("playback"));
}

void EffectWindow::rememberChoices() {
  Preferences& preferences = application_.preferences();
  if (!isFullScreen()) preferences.setBytes("window", saveGeometry());
  preferences.setText("viewer", QString::fromStdString(settingsText(viewer_->settings())));
  preferences.setText("playback", playbackChoices(player_));
}

// Closing.

void EffectWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  if (isClosing_ || !actions_->mayClose()) return;
  if (const int running = activity_->runningJobs(); running > 0) {
    QMessageBox box(QMessageBox::Question, "Vorto", windowText("An export is still running."), QMessageBox::Cancel,
                    this);
    box.setInformativeText(windowText("Closing the window ends it; nothing unfinished is left."));
    box.button(QMessageBox::Cancel)->setText(windowText("Keep the Window"));
    QPushButton* stop = box.addButton(windowText("End the Export"), QMessageBox::DestructiveRole);
    box.exec();
    if (box.clickedButton() != stop) return;
  }
  rememberChoices();
  if (activity_->runningJobs() == 0) return event->accept();
  isClosing_ = true;
  jobsKeepRunning_.emplace();
  activity_->cancelJobs();
  hide();
}

// Jobs clear up after themselves, for which nobody waits.
void EffectWindow::closeWhenJobsEnded() {
  if (activity_->runningJobs() > 0) return;
  jobsKeepRunning_.reset();
  deleteLater();
}

}  // namespace host
