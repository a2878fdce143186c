// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Presets/PresetLibrary.h"
#include "Host/Presets/PresetSearch.h"

#include <QAbstractListModel>
#include <QStringList>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace host {

// Presets as a view shows them: those that are chosen, under the headings of their collections. Names and collections
// that ship are in the language of the editors.
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

  const PresetFolders& folders() const { return folders_; }
  StateKind kind() const { return kind_; }

  void read();  // from the files
  void setChoice(Choice choice);
  const Choice& choice() const { return choice_; }

  const std::vector<std::string>& collections() const { return collections_; }  // in the order of the headings
  const std::vector<PresetFault>& faults() const { return library_.faults; }
  std::size_t presetCount() const { return library_.entries.size(); }
  std::size_t shownCount() const;

  const PresetEntry* entry(const QModelIndex& index) const;  // null for a heading; as long as nothing is read anew
  QModelIndex indexOf(const Preset& preset) const;           // invalid when it is not shown
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
  struct Row {
    std::string collection;
    std::optional<std::size_t> entry;  // none for a heading
  };
  struct Known {
    std::string folded;      // what is searched
    qulonglong picture = 0;  // a number for each state
  };
  void know();
  void arrange();

  const PresetFolders folders_;
  const StateKind kind_;
  PresetLibrary library_;
  std::vector<Known> known_;  // of the library's entries
  std::vector<std::string> collections_;
  std::vector<Row> rows_;
  Choice choice_;
  qulonglong pictures_ = 0;
};

}  // namespace host
