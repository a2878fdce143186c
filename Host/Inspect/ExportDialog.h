// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QDialog>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <functional>
#include <optional>

class QComboBox;
class QDialogButtonBox;
class QLabel;
class QLineEdit;
class QRadioButton;
class QSlider;
class QSpinBox;

namespace host {

// What there is to export.
struct Exportable {
  std::uint32_t first = 0;  // number of the first frame
  std::uint64_t count = 1;
  // Numbers of the in and out points, where they are set.
  std::optional<std::pair<std::uint32_t, std::uint32_t>> chosen = std::nullopt;
  bool isOpenEnded = false;  // there are as many frames as people want: a transition of stills, a generator
  bool hasAudio = false;
  QString name;             // suggested, without extension
  QStringList inputs = {};  // which are not written over
};

// Chooses file, frames and kind of an export. Numbered pictures and clips alike: the extension tells which.
class ExportDialog : public QDialog {
 public:
  // `accepted` is given the output and the arguments of "vorto render" for what was chosen.
  ExportDialog(const Exportable& what, const QString& folder,
               std::function<void(const QString& output, const QStringList& arguments)> accepted, QWidget* parent);

  void setOutput(const QString& path);
  void accept() override;

 private:
  void browse();
  void outputChanged();
  bool isClipChosen() const;
  QStringList arguments() const;
  QString withNumber(QString path) const;
  QString problem() const;  // empty when it can be exported
  bool isThere(const QString& output) const;

  const Exportable what_;
  const std::function<void(const QString& output, const QStringList& arguments)> accepted_;
  QLineEdit* output_;
  QRadioButton* all_;
  QRadioButton* part_;
  QSpinBox* count_;
  QComboBox* codec_;
  QComboBox* depth_;
  QSlider* quality_;
  QLabel* codecLabel_;
  QLabel* qualityLabel_;
  QLabel* note_;
  QDialogButtonBox* buttons_;
  QString container_;  // that codec_ has the names of
};

}  // namespace host
