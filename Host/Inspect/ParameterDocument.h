// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Inspect/UndoHistory.h"
#include "Host/States/StateFile.h"

#include <memory>
#include <string>
#include <vector>

class QCPatch;
class QCPort;

namespace host {

// The parameters of a patch, as an inspector edits them: what they were at first, where their states come from, and the
// way back. Everything that touches a file throws Failure and changes nothing when it cannot be done.
//
// The ports must outlive it. The values that they have when it is made are what a reset gives them.
class ParameterDocument {
 public:
  explicit ParameterDocument(std::vector<QCPort*> parameters);
  // One parameter of no effect, read from a state file; it is told by "kind=FILE".
  static std::unique_ptr<ParameterDocument> ofState(const std::string& assignment);
  ~ParameterDocument();

  const std::vector<QCPort*>& parameters() const { return parameters_; }
  UndoHistory& history() { return history_; }
  void forgetHistory();

  void reset(QCPort& port);
  void resetAll();

  // Gradient, levels and opaque parameters.
  static bool hasStateFile(const QCPort& port);
  // The file that a parameter came from or was saved to; empty when there is none yet, or when it came from a text.
  const std::string& file(const QCPort& port) const;
  void setFile(const QCPort& port, const std::string& path);
  // Whether the parameter is no longer as it is in its file; without a file, as it was when the history began.
  bool isModified(const QCPort& port) const;
  std::vector<QCPort*> unsaved() const;  // those with a state file, or with room for one, that are modified
  // The port that takes a file's state: the preferred one when the kind fits, otherwise the first that takes the kind.
  QCPort& load(const std::string& path, QCPort* preferred);
  // In the format and form that the file of the parameter has; XML, a dictionary, when it has none.
  void save(const QCPort& port, const std::string& path);

 private:
  struct Saved {
    std::string path;
    PropertyListFormat format = PropertyListFormat::Xml;
    StateForm form = StateForm::Dictionary;
    std::optional<PropertyList> state;
  };
  std::size_t indexOf(const QCPort& port) const;
  static Saved savedAs(const std::string& path, const StateFile& file, const QCPort& port);

  std::shared_ptr<QCPatch> ownPatch_;  // of ofState()
  std::vector<QCPort*> parameters_;
  std::vector<std::optional<PropertyList>> initial_;
  std::vector<Saved> saved_;
  UndoHistory history_;
};

}  // namespace host
