// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/PresetTray.h"

#include "Host/Inspect/Appearance.h"
#include "Host/Inspect/MessageBar.h"
#include "Host/Inspect/PresetDelegate.h"
#include "Host/Inspect/PresetModel.h"
#include "Host/Inspect/PresetNameDialog.h"
#include "Host/Inspect/PresetView.h"
#include "Host/Inspect/WindowText.h"
#include "Host/Messages/Failure.h"
#include "Host/Presets/PresetLibrary.h"
#include "Host/Presets/PresetNames.h"

#include <QAction>
#include <QComboBox>
#include <QDesktopServices>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QScrollBar>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>
#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

namespace host {
namespace {

constexpr int kMostFaultsTold = 6;
constexpr int kReadingDelay = 150;              // milliseconds
constexpr std::chrono::milliseconds kSlice(8);  // of reading, between events

enum FilterItem { kAll, kFavorites, kFirstCollection };

QStringList localFiles(const QMimeData& data) {
  QStringList paths;
  for (const QUrl& url : data.urls()) {
    if (url.isLocalFile()) paths.append(url.toLocalFile());
  }
  return paths;
}

QString faultText(const std::vector<PresetFault>& faults) {
  QStringList lines;
  for (const PresetFault& fault : faults) {
    if (lines.size() == kMostFaultsTold) {
      lines.append(windowText("and %1 more").arg(static_cast<int>(faults.size()) - kMostFaultsTold));
      break;
    }
    lines.append(QFileInfo(QString::fromStdString(fault.file)).fileName() + ": " +
                 QString::fromStdString(fault.reason));
  }
  return lines.join('\n');
}

}  // namespace

PresetTray::PresetTray(StateKind kind, Callbacks callbacks, QWidget* parent, const PresetFolders& folders)
    : QWidget(parent),
      kind_(kind),
      callbacks_(std::move(callbacks)),
      model_(new PresetModel(folders, kind, this)),
      view_(new PresetView(this)),
      foot_(new QLabel(this)),
      faults_(new QToolButton(this)),
      messages_(new MessageBar(this)),
      watcher_(new QFileSystemWatcher(this)) {
  setAcceptDrops(true);
  setAccessibleName(windowText(kind == StateKind::Levels ? "Presets of levels" : "Presets of gradients"));
  view_->setModel(model_);
  view_->setItemDelegate(new PresetDelegate(kind, *view_));
  view_->setAccessibleName(accessibleName());
  view_->setContextMenuPolicy(Qt::CustomContextMenu);
  view_->taken = [this](const QModelIndex& index) { apply(index); };
  view_->starred = [this](const QModelIndex& index) { toggleFavorite(index); };
  model_->renamed = [this](const Preset& preset, const QString& name) {
    QTimer::singleShot(0, this, [this, preset, name] { rename(preset, name); });  // once the field is closed
  };
  foot_->setForegroundRole(QPalette::PlaceholderText);
  faults_->setAutoRaise(true);
  QObject::connect(faults_, &QToolButton::clicked, this, [this] { tellFaults(); });
  makeActions();

  auto* foot = new QHBoxLayout;
  foot->setContentsMargins(3, 0, 0, 0);
  foot->addWidget(foot_, 1);
  foot->addWidget(faults_);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(4);
  column->addWidget(makeHead());
  column->addWidget(view_, 1);
  column->addLayout(foot);
  column->addWidget(messages_);

  reading_.setSingleShot(true);
  reading_.setInterval(kReadingDelay);
  QObject::connect(&reading_, &QTimer::timeout, this, [this] { view_->isRenaming() ? reading_.start() : refresh(); });
  QObject::connect(watcher_, &QFileSystemWatcher::directoryChanged, this, [this] { reading_.start(); });
  QObject::connect(&importing_, &QTimer::timeout, this, [this] { importNext(); });
  QObject::connect(view_->selectionModel(), &QItemSelectionModel::currentChanged, this, [this] { updateActions(); });
  QObject::connect(view_, &QWidget::customContextMenuRequested, this,
                   [this](const QPoint& place) { showMenu(view_->viewport()->mapToGlobal(place)); });
  QObject::connect(&slices_, &QTimer::timeout, this, [this] { readSome(); });
  fillFilter();
  updateChoice();
  followFolders();
  slices_.start(0);
}

PresetTray::~PresetTray() = default;

QWidget* PresetTray::makeHead() {
  auto* head = new QWidget(this);
  search_ = new QLineEdit(head);
  search_->setPlaceholderText(windowText("Search"));
  search_->setAccessibleName(windowText("Search presets"));
  search_->setClearButtonEnabled(true);
  search_->installEventFilter(this);
  filter_ = new QComboBox(head);
  filter_->setAccessibleName(windowText("Which presets are shown"));
  filter_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  filter_->setMinimumContentsLength(7);
  menuButton_ = new QToolButton(head);
  menuButton_->setText(QStringLiteral("\u22ef"));
  menuButton_->setAutoRaise(true);
  menuButton_->setPopupMode(QToolButton::InstantPopup);
  menuButton_->setStyleSheet("QToolButton::menu-indicator { image: none; }");
  menuButton_->setAccessibleName(windowText("Menu of the presets"));
  menuButton_->setToolTip(windowText("Save, import and more"));
  menuButton_->setMenu(menu_);
  auto* row = new QHBoxLayout(head);
  row->setContentsMargins(3, 0, 0, 0);
  row->setSpacing(4);
  row->addWidget(search_, 3);
  row->addWidget(filter_, 2);
  row->addWidget(menuButton_);
  QObject::connect(search_, &QLineEdit::textChanged, this, [this] { updateChoice(); });
  QObject::connect(search_, &QLineEdit::returnPressed, this, [this] { view_->enter(); });
  QObject::connect(filter_, &QComboBox::currentIndexChanged, this, [this] { updateChoice(); });
  return head;
}

// In the search field Escape empties it, and the way down leads to what was found.
bool PresetTray::eventFilter(QObject* watched, QEvent* event) {
  if (watched != search_ || event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
  const int key = static_cast<QKeyEvent*>(event)->key();
  if (key == Qt::Key_Escape && !search_->text().isEmpty()) {
    search_->clear();
    return true;
  }
  if (key != Qt::Key_Down) return false;
  view_->enter();
  return true;
}

QAction* PresetTray::addTrayAction(const char* text, const QKeySequence& key, std::function<void()> run) {
  auto* action = new QAction(windowText(text), this);
  action->setShortcut(key);
  action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
  QObject::connect(action, &QAction::triggered, this, [run = std::move(run)] { run(); });
  addAction(action);
  menu_->addAction(action);
  return action;
}

void PresetTray::makeActions() {
  menu_ = new QMenu(this);
  apply_ = addTrayAction("Apply", QKeySequence(), [this] { apply(view_->currentIndex()); });
  favorite_ =
      addTrayAction("Add to Favorites", Qt::CTRL | Qt::Key_D, [this] { toggleFavorite(view_->currentIndex()); });
  rename_ = addTrayAction("Rename", QKeySequence(), [this] { view_->edit(view_->currentIndex()); });
  delete_ = addTrayAction("Delete\u2026", QKeySequence(), [this] { askToDelete(); });
  // Keys of the cells alone: in the field they edit the text.
  for (const auto& [action, key] : {std::pair{rename_, Qt::Key_F2}, std::pair{delete_, Qt::Key_Delete}}) {
    action->setShortcut(key);
    action->setShortcutContext(Qt::WidgetShortcut);
    removeAction(action);
    view_->addAction(action);
  }
  reveal_ = addTrayAction("Reveal File", QKeySequence(), [this] { reveal(); });
  menu_->addSeparator();
  save_ = addTrayAction("Save Current as Preset\u2026", QKeySequence(), [this] { saveCurrent(); });
  importFiles_ = addTrayAction("Import\u2026", QKeySequence(), [this] { chooseFiles(); });
  importFolder_ = addTrayAction("Import Folder\u2026", QKeySequence(), [this] { chooseFolder(); });
  QObject::connect(menu_, &QMenu::aboutToShow, this, [this] { updateActions(); });
}

void PresetTray::showMenu(const QPoint& place) {
  updateActions();
  menu_->popup(place);
}

// The choice that was made stays where it is still there.
void PresetTray::fillFilter() {
  const QVariant chosen = filter_->currentData();
  const QSignalBlocker blocker(filter_);
  filter_->clear();
  filter_->addItem(windowText("All"));
  filter_->addItem(windowText("Favorites"), true);
  filter_->insertSeparator(kFirstCollection);
  for (const std::string& collection : model_->collections()) {
    filter_->addItem(PresetModel::collectionTitle(collection), QString::fromStdString(collection));
  }
  for (int i = 0; i < filter_->count(); ++i) {
    if (chosen.isValid() && filter_->itemData(i) == chosen) filter_->setCurrentIndex(i);
  }
}

void PresetTray::updateChoice() {
  PresetModel::Choice choice;
  choice.words = search_->text();
  choice.favorites = filter_->currentIndex() == kFavorites;
  if (filter_->currentIndex() >= kFirstCollection) choice.collection = filter_->currentData().toString().toStdString();
  const auto kept = selected();
  model_->setChoice(std::move(choice));
  if (kept) select(*kept);
  const bool isSearching = !search_->text().isEmpty();
  view_->setEmptyText(windowText(isSearching                  ? "No preset has these words"
                                 : model_->choice().favorites ? "Presets with a star are kept here"
                                                              : "Drop .ggr, .svg or .cpt files here"));
  updateActions();
  updateFoot();
}

void PresetTray::updateActions() {
  const Preset* const preset = model_->preset(view_->currentIndex());
  const bool isUsers = preset && preset->origin == PresetOrigin::User;
  const bool isFavorite = model_->isFavorite(view_->currentIndex());
  for (QAction* action : {apply_, favorite_, reveal_}) action->setEnabled(preset != nullptr);
  for (QAction* action : {rename_, delete_}) action->setEnabled(isUsers);
  favorite_->setText(windowText(isFavorite ? "Remove from Favorites" : "Add to Favorites"));
}

void PresetTray::updateFoot() {
  const auto shown = static_cast<int>(model_->shownCount()), all = static_cast<int>(model_->presetCount());
  foot_->setText(shown == all ? windowText("%1 presets").arg(all) : windowText("%1 of %2 presets").arg(shown).arg(all));
  const std::vector<PresetFault> faults = model_->faults();
  faults_->setVisible(!faults.empty());
  faults_->setText(windowText("%1 unreadable").arg(static_cast<int>(faults.size())));
  faults_->setToolTip(faultText(faults));
}

void PresetTray::refresh() {
  keepingView([this] {
    model_->read();
    fillFilter();
  });
  updateActions();
  updateFoot();
  followFolders();
  slices_.start(0);
}

// What is in the files, a few at a time.
void PresetTray::readSome() {
  if (view_->isRenaming()) return slices_.start(kReadingDelay);  // new rows would end it
  bool isMore = false;
  keepingView([&] { isMore = model_->readSome(kSlice); });
  if (isMore) return slices_.start(0);
  slices_.stop();
  updateFoot();
}

// What is selected and seen stays so while the model's rows change.
void PresetTray::keepingView(const std::function<void()>& change) {
  const auto kept = selected();
  const int place = view_->verticalScrollBar()->value();
  bool isReset = false;
  const auto heard = QObject::connect(model_, &QAbstractItemModel::modelReset, [&isReset] { isReset = true; });
  change();
  QObject::disconnect(heard);
  if (!isReset) return;
  view_->doItemsLayout();
  if (const QModelIndex index = kept ? model_->indexOf(*kept) : QModelIndex(); index.isValid()) {
    view_->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
  }
  view_->verticalScrollBar()->setValue(place);
}

void PresetTray::followFolders() {
  QStringList folders;
  const auto add = [&](const std::filesystem::path& folder) {
    const QString path = QString::fromStdString(folder.string());
    if (!folder.empty() && QFileInfo(path).isDir() && !folders.contains(path)) folders.append(path);
  };
  const std::filesystem::path& user = model_->presetFolders().user;
  add(user);
  if (!user.empty()) add(user / presetFolderName(kind_));
  for (const QString& folder : model_->folders()) add(folder.toStdString());
  if (const QStringList last = watcher_->directories(); !last.isEmpty()) watcher_->removePaths(last);
  if (!folders.isEmpty()) watcher_->addPaths(folders);
}

void PresetTray::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  if (!event->spontaneous() && std::exchange(wasShown_, true)) reading_.start();
}

std::optional<Preset> PresetTray::selected() const {
  const Preset* const preset = model_->preset(view_->currentIndex());
  return preset ? std::optional(*preset) : std::nullopt;
}

void PresetTray::select(const Preset& preset) {
  const QModelIndex index = model_->indexOf(preset);
  if (!index.isValid()) return;
  view_->setCurrentIndex(index);
  view_->scrollTo(index);
}

void PresetTray::attempt(const std::function<void()>& change) {
  messages_->clear();
  try {
    change();
  } catch (const std::exception& error) {
    messages_->show(QString::fromUtf8(error.what()));
  }
}

void PresetTray::apply(const QModelIndex& index) {
  const PropertyList* const known = model_->state(index);
  if (!known || !callbacks_.apply) return;
  const PropertyList state = *known;  // the presets may be read anew meanwhile
  attempt([&] { callbacks_.apply(state); });
}

void PresetTray::toggleFavorite(const QModelIndex& index) {
  if (!model_->preset(index)) return;
  attempt([&] { keepingView([&] { model_->setFavorite(index, !model_->isFavorite(index)); }); });
  updateActions();
  updateFoot();
}

void PresetTray::rename(const Preset& preset, const QString& name) {
  attempt([&] {
    const Preset renamed = renamePreset(model_->presetFolders(), preset, name.toStdString());
    refresh();
    select(renamed);
  });
}

void PresetTray::askToDelete() {
  const auto preset = selected();
  if (!preset || preset->origin != PresetOrigin::User) return;
  auto* question =
      new QMessageBox(QMessageBox::Question, windowText("Delete Preset"),
                      windowText("Delete \u201c%1\u201d?").arg(PresetModel::title(*preset)), QMessageBox::Cancel, this);
  question->setInformativeText(windowText("Its file is removed. This cannot be undone."));
  question->button(QMessageBox::Cancel)->setText(windowText("Cancel"));
  auto* yes = question->addButton(windowText("Delete"), QMessageBox::DestructiveRole);
  question->setAttribute(Qt::WA_DeleteOnClose);
  QObject::connect(yes, &QAbstractButton::clicked, this, [this, preset = *preset] {
    attempt([&] {
      deletePreset(model_->presetFolders(), preset);
      refresh();
    });
  });
  question->open();
}

void PresetTray::saveCurrent() {
  QStringList collections;
  for (const std::string& collection : model_->collections()) {
    const QString name = QString::fromStdString(collection);
    if (!name.isEmpty()) collections.append(name);
  }
  const auto isTaken = [this](const QString& name, const QString& collection) {
    return userPresetNamed(model_->presetFolders(), kind_, name.toStdString(), collection.toStdString()).has_value();
  };
  auto* dialog = new PresetNameDialog(
      collections,
      {isTaken, [this](const QString& name, const QString& collection) { savePresentAs(name, collection); }}, this);
  dialog->open();
}

void PresetTray::savePresentAs(const QString& name, const QString& collection) {
  attempt([&] {
    const auto state = callbacks_.present ? callbacks_.present() : std::nullopt;
    if (!state) throw Failure(ExitCode::Usage, windowText("There is nothing to save.").toStdString());
    const Preset saved = savePreset(model_->presetFolders(), kind_, name.toStdString(), collection.toStdString(),
                                    *state, SameName::Replaced);
    search_->clear();
    filter_->setCurrentIndex(kAll);
    refresh();
    select(saved);
  });
}

void PresetTray::chooseFiles() {
  auto* dialog = new QFileDialog(this, windowText("Import Presets"));
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setFileMode(QFileDialog::ExistingFiles);
  dialog->setNameFilters(
      {windowText("Gradients and states (*.ggr *.svg *.cpt *.css *.gradient *.levels *.plist *.txt *.json)"),
       windowText("All files (*)")});
  QObject::connect(dialog, &QFileDialog::filesSelected, this, [this](const QStringList& files) { importFiles(files); });
  dialog->open();
}

void PresetTray::chooseFolder() {
  auto* dialog = new QFileDialog(this, windowText("Import Folder of Presets"));
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setFileMode(QFileDialog::Directory);
  dialog->setOption(QFileDialog::ShowDirsOnly);
  QObject::connect(dialog, &QFileDialog::filesSelected, this, [this](const QStringList& files) { importFiles(files); });
  dialog->open();
}

void PresetTray::importFiles(const QStringList& paths) {
  if (isImporting()) return;
  std::vector<std::string> files;
  for (const QString& path : paths) files.push_back(path.toStdString());
  attempt([&] {
    importer_ = std::make_unique<PresetImporter>(model_->presetFolders(), files);
    importing_.start(0);
  });
}

void PresetTray::importNext() {
  importer_->step();
  foot_->setText(windowText("Importing, %1 to go").arg(static_cast<int>(importer_->remaining())));
  if (!importer_->isDone()) return;
  importing_.stop();
  const std::unique_ptr<PresetImporter> done = std::move(importer_);
  refresh();
  tellOfImport(done->report());
}

// What was imported is seen, whatever had been chosen.
void PresetTray::tellOfImport(const PresetImport& report) {
  const auto first = std::ranges::find_if(report.added, [&](const Preset& preset) { return preset.kind == kind_; });
  if (first != report.added.end()) {
    search_->clear();
    filter_->setCurrentIndex(kAll);
    select(*first);
  }
  QString text = windowText("%1 imported").arg(static_cast<int>(report.added.size()));
  if (report.known > 0) text += ", " + windowText("%1 known already").arg(static_cast<int>(report.known));
  foot_->setText(text);
  if (!report.faults.empty()) messages_->show(faultText(report.faults));
}

void PresetTray::tellFaults() {
  messages_->show(faultText(model_->faults()));
}

void PresetTray::reveal() {
  const auto preset = selected();
  if (!preset) return;
  const QString file = QString::fromStdString(preset->file);
  if (!QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(file).absolutePath()))) messages_->show(file);
}

void PresetTray::dragEnterEvent(QDragEnterEvent* event) {
  if (event->source() != view_ && !localFiles(*event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void PresetTray::dropEvent(QDropEvent* event) {
  if (event->source() == view_) return;
  event->acceptProposedAction();
  importFiles(localFiles(*event->mimeData()));
}

}  // namespace host
