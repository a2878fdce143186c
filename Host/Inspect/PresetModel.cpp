// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/PresetModel.h"

#include "Host/Inspect/WindowText.h"
#include "Host/Texts/ParameterText.h"

#include <QMimeData>
#include <QUrl>
#include <algorithm>
#include <map>
#include <memory>
#include <utility>

namespace host {

PresetModel::PresetModel(PresetFolders folders, StateKind kind, QObject* parent)
    : QAbstractListModel(parent), folders_(std::move(folders)), kind_(kind) {
  read();
}

QString PresetModel::collectionTitle(const std::string& collection) {
  return collection.empty() ? windowText("My Presets") : windowText(collection.c_str());
}

QString PresetModel::title(const Preset& preset) {
  const bool isShipped = preset.origin == PresetOrigin::Shipped;
  return isShipped ? windowText(preset.name.c_str()) : QString::fromStdString(preset.name);
}

void PresetModel::read() {
  beginResetModel();
  PresetLibrary before = std::exchange(library_, readPresets(folders_, kind_));
  std::map<std::string, std::pair<const PropertyList*, qulonglong>> pictures;
  for (std::size_t i = 0; i < known_.size(); ++i) {
    pictures[before.entries[i].preset.file] = {&before.entries[i].state, known_[i].picture};
  }
  known_.clear();
  for (const PresetEntry& entry : library_.entries) {
    const auto last = pictures.find(entry.preset.file);
    const bool isSame = last != pictures.end() && *last->second.first == entry.state;
    known_.push_back({"", isSame ? last->second.second : ++pictures_});
  }
  know();
  arrange();
  endResetModel();
}

void PresetModel::know() {
  collections_.clear();
  for (std::size_t i = 0; i < library_.entries.size(); ++i) {
    const Preset& preset = library_.entries[i].preset;
    const QString titles = title(preset) + ' ' + collectionTitle(preset.collection);
    known_[i].folded = foldedForSearch(preset.name + ' ' + preset.collection + ' ' + titles.toStdString());
    if (std::ranges::find(collections_, preset.collection) == collections_.end()) {
      collections_.push_back(preset.collection);
    }
  }
}

void PresetModel::setChoice(Choice choice) {
  beginResetModel();
  choice_ = std::move(choice);
  arrange();
  endResetModel();
}

void PresetModel::arrange() {
  const PresetSearch search(choice_.words.toStdString());
  std::map<std::string, std::vector<std::size_t>> chosen;
  for (std::size_t i = 0; i < library_.entries.size(); ++i) {
    const PresetEntry& entry = library_.entries[i];
    const bool isChosen = (!choice_.favorites || entry.isFavorite) && search.matches(known_[i].folded) &&
                          choice_.collection.value_or(entry.preset.collection) == entry.preset.collection;
    if (isChosen) chosen[entry.preset.collection].push_back(i);
  }
  rows_.clear();
  for (const std::string& collection : collections_) {
    const auto found = chosen.find(collection);
    if (found == chosen.end()) continue;
    rows_.push_back({collection, std::nullopt});
    for (const std::size_t i : found->second) rows_.push_back({collection, i});
  }
}

std::size_t PresetModel::shownCount() const {
  return static_cast<std::size_t>(std::ranges::count_if(rows_, [](const Row& row) { return row.entry.has_value(); }));
}

const PresetEntry* PresetModel::entry(const QModelIndex& index) const {
  if (!index.isValid() || index.model() != this) return nullptr;
  const Row& row = rows_[static_cast<std::size_t>(index.row())];
  return row.entry ? &library_.entries[*row.entry] : nullptr;
}

QModelIndex PresetModel::indexOf(const Preset& preset) const {
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    const auto& entry = rows_[i].entry;
    if (entry && library_.entries[*entry].preset.file == preset.file) return index(static_cast<int>(i));
  }
  return {};
}

int PresetModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant PresetModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const Row& row = rows_[static_cast<std::size_t>(index.row())];
  if (role == kHeadingRole) return !row.entry;
  if (!row.entry) return role == Qt::DisplayRole ? collectionTitle(row.collection) : QVariant();
  const PresetEntry& entry = library_.entries[*row.entry];
  switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
      return title(entry.preset);
    case Qt::ToolTipRole:
      return title(entry.preset) + '\n' + QString::fromStdString(entry.preset.file);
    case Qt::AccessibleDescriptionRole:
      return collectionTitle(row.collection) + (entry.isFavorite ? ", " + windowText("favorite") : QString());
    case kFavoriteRole:
      return entry.isFavorite;
    case kPictureRole:
      return known_[*row.entry].picture;
    default:
      return {};
  }
}

bool PresetModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  const PresetEntry* const preset = entry(index);
  if (!preset || role != Qt::EditRole || !renamed) return false;
  const Preset before = preset->preset;  // reading makes the entries anew
  renamed(before, value.toString());
  return true;
}

Qt::ItemFlags PresetModel::flags(const QModelIndex& index) const {
  const PresetEntry* const preset = entry(index);
  if (!preset) return Qt::NoItemFlags;
  const Qt::ItemFlags flags =
      Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemNeverHasChildren;
  return preset->preset.origin == PresetOrigin::User ? flags | Qt::ItemIsEditable : flags;
}

QStringList PresetModel::mimeTypes() const {
  return {"text/uri-list", "text/plain"};
}

QMimeData* PresetModel::mimeData(const QModelIndexList& indexes) const {
  const PresetEntry* const preset = indexes.isEmpty() ? nullptr : entry(indexes.front());
  if (!preset) return nullptr;
  auto data = std::make_unique<QMimeData>();
  data->setUrls({QUrl::fromLocalFile(QString::fromStdString(preset->preset.file))});
  Notes notes;
  const auto text = textOfParameter(kind_, preset->state, TextFormat::Text, notes, nullptr);
  if (text) data->setText(QString::fromStdString(*text));
  return data.release();
}

}  // namespace host
