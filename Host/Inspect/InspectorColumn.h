// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QScrollArea>
#include <vector>

class QCPort;
class QLabel;
class QVBoxLayout;

namespace host {

class DocumentActions;
class ParameterSection;

// The column of the parameters: a heading, then for every port in their order a row with its name and editor, or a
// section when it brings an editor of its own.
class InspectorColumn : public QScrollArea {
 public:
  struct Heading {
    QString title;
    QString detail;
  };
  InspectorColumn(DocumentActions& actions, const Heading& heading, QWidget* parent = nullptr);

  void loaded(QCPort& port);  // another file's value
  void updateTitles();
  ParameterSection* section(const QCPort& port) const;  // null for a port that has a row

 private:
  void addHeading(QVBoxLayout& column, const Heading& heading);
  void addRow(QVBoxLayout& column, QCPort& port);
  void addSection(QVBoxLayout& column, QCPort& port, DocumentActions& actions);
  void addRule(QVBoxLayout& column);

  QWidget* content_;
  std::vector<ParameterSection*> sections_;
};

}  // namespace host
