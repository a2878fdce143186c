// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Presets/PresetFolders.h"
#include "Host/Presets/PresetImport.h"
#include "Platform/Foundation/PropertyList.h"

#include <QStringList>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>

class QAction;
class QComboBox;
class QFileSystemWatcher;
class QLabel;
class QLineEdit;
class QMenu;
class QToolButton;

namespace host {

class MessageBar;
class PresetModel;
class PresetView;

// The presets of one kind, to choose from: pictures with names, under the headings of their collections, with a field
// to search in, a choice of favorites and collections, and a menu of what can be done. A click or Enter applies a
// preset. The user's own can be saved, renamed, deleted and imported; files that are dropped are imported, and a preset
// can be dragged out, as its file and as text. Nothing waits: files are imported one at a time, between events, and
// dialogs leave the window alive.
//
// The tray follows the files: what other windows and programs change in the user's folder shows.
class PresetTray : public QWidget {
 public:
  struct Callbacks {
    std::function<std::optional<PropertyList>()> present;  // the state that "Save Current as Preset" takes
    std::function<void(const PropertyList& state)> apply;
  };
  // `kind` is Gradient or Levels.
  PresetTray(StateKind kind, Callbacks callbacks, QWidget* parent,
             const PresetFolders& folders = PresetFolders::standard());
  ~PresetTray() override;

  void refresh();  // reads the files again
  void importFiles(const QStringList& paths);
  bool isImporting() const { return importer_ != nullptr; }
  void saveCurrent();                                                  // opens the dialog
  void savePresentAs(const QString& name, const QString& collection);  // over another of that name, if there is one

  QSize sizeHint() const override { return {236, 320}; }
  QSize minimumSizeHint() const override { return {160, 140}; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  QAction* addTrayAction(const char* text, const QKeySequence& key, std::function<void()> run);
  void makeActions();
  QWidget* makeHead();
  void showMenu(const QPoint& place);
  void updateChoice();
  void fillFilter();
  void updateActions();
  void updateFoot();
  void readSome();
  void keepingView(const std::function<void()>& change);
  void followFolders();

  std::optional<Preset> selected() const;
  void select(const Preset& preset);
  void attempt(const std::function<void()>& change);  // what fails is said
  void apply(const QModelIndex& index);
  void toggleFavorite(const QModelIndex& index);
  void rename(const Preset& preset, const QString& name);
  void askToDelete();
  void chooseFiles();
  void chooseFolder();
  void importNext();
  void tellOfImport(const PresetImport& report);
  void tellFaults();
  void reveal();

  const StateKind kind_;
  const Callbacks callbacks_;
  PresetModel* model_;
  PresetView* view_;
  QLineEdit* search_;
  QComboBox* filter_;
  QToolButton* menuButton_;
  QMenu* menu_;
  QLabel* foot_;
  QToolButton* faults_;
  MessageBar* messages_;
  QAction *apply_, *favorite_, *rename_, *delete_, *reveal_, *save_, *importFiles_, *importFolder_;
  QFileSystemWatcher* watcher_;
  bool wasShown_ = false;  // before: what changed while it was hidden is read
  QTimer reading_;         // coalesces what is heard of the folders
  QTimer slices_;          // the next few files, as soon as events are handled
  QTimer importing_;       // the next file, as soon as events are handled
  std::unique_ptr<PresetImporter> importer_;
};

}  // namespace host
