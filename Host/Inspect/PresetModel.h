// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Presets/PresetFolders.h"
#include "Platform/Foundation/PropertyList.h"

#include <QAbstractListModel>
#include <QStringList>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace host {

// Presets as a view shows them: those that are chosen, under the headings of their collections. Names and collections
// that ship are in the language of the editors.
//
// Names are known at once. What is in a file is read when it is wanted, or with readSome(), and kept as long as the
// file stays the same; a file that turns out to be no preset is then left out.
class PresetModel : public QAbstractListModel {
 public:
  enum Role { kHeadingRole = Qt::UserRole, kFavoriteRole, kPictureRole };

  // Which of them are shown.
  struct Choice {
    QString words;                          // that people look for
    bool favorites = false;                 // these alone
    std::optional<std::string> collection;  // this alone
  };

  PresetModel(PresetFolders folders, StateKind kind, QObject* parent);

  const PresetFolders& presetFolders() const { return presetFolders_; }
  StateKind kind() const { return kind_; }

  void read();  // the names, anew
  // Reads files that have not been read, for about that long. Returns whether there are more.
  bool readSome(std::chrono::milliseconds time);
  void setChoice(Choice choice);
  const Choice& choice() const { return choice_; }

  const std::vector<std::string>& collections() const { return collections_; }  // in the order of the headings
  std::vector<PresetFault> faults() const;                                      // that are known by now
  std::size_t presetCount() const { return items_.size() - bad_; }
  std::size_t shownCount() const;
  QStringList folders() const;  // in which the user's presets are

  // Of a heading null, nothing or false. A state is read when it has to be; null when the file holds none.
  const Preset* preset(const QModelIndex& index) const;
  const PropertyList* state(const QModelIndex& index) const;
  bool isFavorite(const QModelIndex& index) const;
  void setFavorite(const QModelIndex& index, bool isFavorite);  // throws Failure
  QModelIndex indexOf(const Preset& preset) const;              // invalid when it is not shown
  static QString collectionTitle(const std::string& collection);
  static QString title(const Preset& preset);

  // Called with the new name when one has been typed.
  std::function<void(const Preset& preset, const QString& name)> renamed;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  QStringList mimeTypes() const override;
  QMimeData* mimeData(const QModelIndexList& indexes) const override;
  Qt::DropActions supportedDragActions() const override { return Qt::CopyAction; }

 private:
  // What tells a file from another of its name, and from what it was.
  struct Stamp {
    std::int64_t size = -1, seconds = 0, nanoseconds = 0;
    std::uint64_t file = 0;
    bool operator==(const Stamp&) const = default;
  };
  static Stamp stampOf(const std::string& path);

  struct Item {
    Preset preset;
    Stamp stamp;
    bool isFavorite = false;
    std::string folded;     // what is searched
    std::string order;      // by which they are sorted
    qulonglong number = 0;  // of what is in the file, as long as that stays the same
    enum { Unread, Good, Bad } content = Unread;
    PropertyList state;
    std::string reason;
  };
  struct Row {
    std::string collection;
    std::optional<std::size_t> item;  // none for a heading
  };
  void takeOver(std::vector<Item>& before);
  void collect();
  void arrange();
  void readItem(Item& item) const;
  const Item* item(const QModelIndex& index) const;

  const PresetFolders presetFolders_;
  const StateKind kind_;
  mutable std::vector<Item> items_;
  std::vector<PresetFault> listingFaults_;
  mutable std::size_t bad_ = 0;   // of the items
  mutable std::size_t read_ = 0;  // items before it have been read
  std::size_t arrangedBad_ = 0;   // how many were known to be bad when rows were made
  std::vector<std::string> collections_;
  std::vector<Row> rows_;
  Choice choice_;
  qulonglong numbers_ = 0;
};

}  // namespace host
