// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QScrollArea>
#include <cstdint>
#include <vector>

class QCPort;
class QLabel;
class QVBoxLayout;
struct TCHistogram;

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

  void setInputs(QWidget* inputs);  // below the heading; belongs to the column then
  // Of the picture on view, for editors that show them; `bits` of its channels, 32 of floats.
  void setCounts(const TCHistogram& input, const TCHistogram& result, std::uint32_t bits);
  void loaded(QCPort& port);  // another file's value
  void updateTitles();
  ParameterSection* section(const QCPort& port) const;  // null for a port that has a row

 private:
  void addHeading(QVBoxLayout& column, const Heading& heading);
  void addRow(QVBoxLayout& column, QCPort& port);
  void addSection(QVBoxLayout& column, QCPort& port, DocumentActions& actions);
  void addRule(QVBoxLayout& column);

  QWidget* content_;
  QVBoxLayout* column_;
  int belowHeading_ = 0;  // the place in the column
  std::vector<ParameterSection*> sections_;
};

}  // namespace host
