// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/PresetModel.h"

#include "Host/Inspect/WindowText.h"
#include "Host/Presets/FavoritePresets.h"
#include "Host/Presets/PresetReference.h"
#include "Host/Presets/PresetSearch.h"
#include "Host/Texts/ParameterText.h"

#include <sys/stat.h>

#include <QMimeData>
#include <QUrl>
#include <algorithm>
#include <filesystem>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace host {

PresetModel::PresetModel(PresetFolders folders, StateKind kind, QObject* parent)
    : QAbstractListModel(parent), presetFolders_(std::move(folders)), kind_(kind) {
  read();
}

QString PresetModel::collectionTitle(const std::string& collection) {
  return collection.empty() ? windowText("My Presets") : windowText(collection.c_str());
}

QString PresetModel::title(const Preset& preset) {
  const bool isShipped = preset.origin == PresetOrigin::Shipped;
  return isShipped ? windowText(preset.name.c_str()) : QString::fromStdString(preset.name);
}

PresetModel::Stamp PresetModel::stampOf(const std::string& path) {
  struct stat status;
  if (::stat(path.c_str(), &status) != 0) return {};
  return {status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec, status.st_ino};
}

void PresetModel::read() {
  beginResetModel();
  std::vector<Item> before = std::exchange(items_, {});
  PresetListing listing = listPresets(presetFolders_, kind_);
  listingFaults_ = std::move(listing.faults);
  const FavoritePresets favorites(presetFolders_);
  for (Preset& preset : listing.presets) {
    Item item;
    item.stamp = stampOf(preset.file);
    item.isFavorite = favorites.contains(preset);
    item.preset = std::move(preset);
    items_.push_back(std::move(item));
  }
  takeOver(before);
  collect();
  arrange();
  endResetModel();
}

// What is known of files that are still the same.
void PresetModel::takeOver(std::vector<Item>& before) {
  std::unordered_map<std::string, Item*> known;
  for (Item& item : before) known.emplace(item.preset.file, &item);
  bad_ = 0;
  read_ = 0;
  for (Item& item : items_) {
    const auto last = known.find(item.preset.file);
    if (last != known.end() && last->second->stamp == item.stamp) {
      const bool isFavorite = item.isFavorite;
      item = std::move(*last->second);
      item.isFavorite = isFavorite;
    } else {
      const QString titles = title(item.preset) + ' ' + collectionTitle(item.preset.collection);
      item.folded = foldedForSearch(item.preset.name + ' ' + item.preset.collection + ' ' + titles.toStdString());
      const std::string place = foldedForSearch(collectionTitle(item.preset.collection).toStdString());
      item.order =
          (item.preset.collection.empty() ? "" : place) + '\n' + foldedForSearch(title(item.preset).toStdString());
      item.number = ++numbers_;
    }
    if (item.content == Item::Bad) ++bad_;
  }
  std::ranges::stable_sort(items_, {}, [](const Item& item) {
    return std::pair<bool, const std::string&>(item.preset.origin == PresetOrigin::Shipped, item.order);
  });
}

void PresetModel::collect() {
  collections_.clear();
  std::unordered_set<std::string> seen;
  for (const Item& item : items_) {
    if (seen.insert(item.preset.collection).second) collections_.push_back(item.preset.collection);
  }
}

void PresetModel::readItem(Item& item) const {
  if (item.content != Item::Unread) return;
  try {
    item.state = readPreset(item.preset).state;
    item.content = Item::Good;
  } catch (const std::exception& error) {
    const QString message = QString::fromUtf8(error.what()),
                  before = "cannot read " + QString::fromStdString(item.preset.file) + ": ";
    item.reason = (message.startsWith(before) ? message.mid(before.size()) : message).toStdString();
    item.content = Item::Bad;
    ++bad_;
  }
}

bool PresetModel::readSome(std::chrono::milliseconds time) {
  const auto end = std::chrono::steady_clock::now() + time;
  while (read_ < items_.size() && std::chrono::steady_clock::now() < end) readItem(items_[read_++]);
  if (read_ < items_.size()) return true;
  if (bad_ != arrangedBad_) {
    beginResetModel();
    arrange();
    endResetModel();
  }
  return false;
}

void PresetModel::setChoice(Choice choice) {
  beginResetModel();
  choice_ = std::move(choice);
  arrange();
  endResetModel();
}

void PresetModel::arrange() {
  const PresetSearch search(choice_.words.toStdString());
  std::unordered_map<std::string, std::vector<std::size_t>> chosen;
  for (std::size_t i = 0; i < items_.size(); ++i) {
    const Item& item = items_[i];
    const bool isChosen = item.content != Item::Bad && (!choice_.favorites || item.isFavorite) &&
                          choice_.collection.value_or(item.preset.collection) == item.preset.collection &&
                          search.matches(item.folded);
    if (isChosen) chosen[item.preset.collection].push_back(i);
  }
  rows_.clear();
  for (const std::string& collection : collections_) {
    const auto found = chosen.find(collection);
    if (found == chosen.end()) continue;
    rows_.push_back({collection, std::nullopt});
    for (const std::size_t i : found->second) rows_.push_back({collection, i});
  }
  arrangedBad_ = bad_;
}

std::vector<PresetFault> PresetModel::faults() const {
  std::vector<PresetFault> faults = listingFaults_;
  for (const Item& item : items_) {
    if (item.content == Item::Bad) faults.push_back({item.preset.file, item.reason});
  }
  return faults;
}

std::size_t PresetModel::shownCount() const {
  return static_cast<std::size_t>(std::ranges::count_if(rows_, [](const Row& row) { return row.item.has_value(); }));
}

QStringList PresetModel::folders() const {
  std::unordered_set<std::string> seen;
  QStringList folders;
  for (const Item& item : items_) {
    const std::string folder = std::filesystem::path(item.preset.file).parent_path().string();
    const bool isNew = item.preset.origin == PresetOrigin::User && seen.insert(folder).second;
    if (isNew) folders.append(QString::fromStdString(folder));
  }
  return folders;
}

const PresetModel::Item* PresetModel::item(const QModelIndex& index) const {
  if (!index.isValid() || index.model() != this) return nullptr;
  const Row& row = rows_[static_cast<std::size_t>(index.row())];
  return row.item ? &items_[*row.item] : nullptr;
}

const Preset* PresetModel::preset(const QModelIndex& index) const {
  const Item* const found = item(index);
  return found ? &found->preset : nullptr;
}

const PropertyList* PresetModel::state(const QModelIndex& index) const {
  const Item* const found = item(index);
  if (!found) return nullptr;
  readItem(items_[*rows_[static_cast<std::size_t>(index.row())].item]);
  return found->content == Item::Good ? &found->state : nullptr;
}

bool PresetModel::isFavorite(const QModelIndex& index) const {
  const Item* const found = item(index);
  return found && found->isFavorite;
}

void PresetModel::setFavorite(const QModelIndex& index, bool isFavorite) {
  const Item* const found = item(index);
  if (!found) return;
  FavoritePresets(presetFolders_).set(found->preset, isFavorite);
  items_[*rows_[static_cast<std::size_t>(index.row())].item].isFavorite = isFavorite;
  if (choice_.favorites) {
    setChoice(choice_);
  } else {
    emit dataChanged(index, index);
  }
}

QModelIndex PresetModel::indexOf(const Preset& preset) const {
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    if (rows_[i].item && items_[*rows_[i].item].preset.file == preset.file) return index(static_cast<int>(i));
  }
  return {};
}

int PresetModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant PresetModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const Item* const found = item(index);
  if (role == kHeadingRole) return !found;
  const QString collection = collectionTitle(rows_[static_cast<std::size_t>(index.row())].collection);
  if (!found) return role == Qt::DisplayRole ? collection : QVariant();
  switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
      return title(found->preset);
    case Qt::ToolTipRole:
      return title(found->preset) + '\n' + QString::fromStdString(found->preset.file);
    case Qt::AccessibleDescriptionRole:
      return collection + (found->isFavorite ? ", " + windowText("favorite") : QString());
    case kFavoriteRole:
      return found->isFavorite;
    case kPictureRole:
      return found->number;
    default:
      return {};
  }
}

bool PresetModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  const Preset* const before = preset(index);
  if (!before || role != Qt::EditRole || !renamed) return false;
  renamed(Preset(*before), value.toString());  // reading makes them anew
  return true;
}

Qt::ItemFlags PresetModel::flags(const QModelIndex& index) const {
  const Preset* const found = preset(index);
  if (!found) return Qt::NoItemFlags;
  const Qt::ItemFlags flags =
      Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemNeverHasChildren;
  return found->origin == PresetOrigin::User ? flags | Qt::ItemIsEditable : flags;
}

QStringList PresetModel::mimeTypes() const {
  return {"text/uri-list", "text/plain"};
}

QMimeData* PresetModel::mimeData(const QModelIndexList& indexes) const {
  const PropertyList* const found = indexes.isEmpty() ? nullptr : state(indexes.front());
  if (!found) return nullptr;
  auto data = std::make_unique<QMimeData>();
  data->setUrls({QUrl::fromLocalFile(QString::fromStdString(preset(indexes.front())->file))});
  Notes notes;
  const auto text = textOfParameter(kind_, *found, TextFormat::Text, notes, nullptr);
  if (text) data->setText(QString::fromStdString(*text));
  return data.release();
}

}  // namespace host
