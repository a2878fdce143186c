// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/ExportDialog.h"

#include "Host/Clips/ClipFormats.h"
#include "Host/Files/FileFormat.h"
#include "Host/Files/FrameFiles.h"
#include "Host/Inspect/WindowText.h"
#include "Host/Messages/Failure.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QSpinBox>
#include <QVBoxLayout>
#include <utility>

namespace host {
namespace {

constexpr int kUsualTransition = 50;  // frames
constexpr int kUsualQuality = 0;      // of the slider: leaves it to the encoder

const ClipContainer* containerOf(const QString& path) {
  return clipContainerOf(path.toStdString());
}

QWidget* inRow(std::initializer_list<QWidget*> widgets, QWidget* parent) {
  auto* row = new QWidget(parent);
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  for (QWidget* widget : widgets) layout->addWidget(widget, qobject_cast<QLineEdit*>(widget) ? 1 : 0);
  layout->addStretch(0);
  return row;
}

}  // namespace

ExportDialog::ExportDialog(const Exportable& what, const QString& folder,
                           std::function<void(const QString& output, const QStringList& arguments)> accepted,
                           QWidget* parent)
    : QDialog(parent),
      what_(what),
      accepted_(std::move(accepted)),
      output_(new QLineEdit(this)),
      all_(new QRadioButton(this)),
      part_(new QRadioButton(this)),
      count_(new QSpinBox(this)),
      codec_(new QComboBox(this)),
      depth_(new QComboBox(this)),
      quality_(new QSlider(Qt::Horizontal, this)),
      codecLabel_(new QLabel(windowText("Codec"), this)),
      qualityLabel_(new QLabel(windowText("Quality"), this)),
      note_(new QLabel(this)),
      buttons_(new QDialogButtonBox(QDialogButtonBox::Cancel, this)) {
  setWindowTitle(windowText("Export"));
  setAttribute(Qt::WA_DeleteOnClose);
  auto* browse = new QPushButton(windowText("Browse\u2026"), this);
  browse->setAutoDefault(false);
  QObject::connect(browse, &QPushButton::clicked, this, [this] { this->browse(); });
  output_->setAccessibleName(windowText("File"));
  output_->setMinimumWidth(320);

  all_->setText(windowText("All %1 frames").arg(what_.count));
  all_->setChecked(!what_.chosen);
  if (what_.chosen) {
    part_->setText(windowText("In to out: %1 to %2").arg(what_.chosen->first).arg(what_.chosen->second));
    part_->setChecked(true);
  }
  count_->setRange(1, 1000000);
  count_->setValue(kUsualTransition);
  count_->setAccessibleName(windowText("Frames"));
  all_->setVisible(!what_.isOpenEnded);
  part_->setVisible(!what_.isOpenEnded && what_.chosen.has_value());
  count_->setVisible(what_.isOpenEnded);

  const std::pair<const char*, const char*> depths[] = {
      {"As the inputs", ""}, {"8 bits", "8"}, {"16 bits", "16"}, {"Half float", "half"}, {"Float", "float"}};
  for (const auto& [text, value] : depths) depth_->addItem(windowText(text), QString(value));
  quality_->setRange(kUsualQuality, 100);
  quality_->setValue(kUsualQuality);
  quality_->setAccessibleName(windowText("Quality"));
  auto* qualityText = new QLabel(windowText("usual"), this);
  qualityText->setMinimumWidth(48);
  QObject::connect(quality_, &QSlider::valueChanged, this, [qualityText](int value) {
    qualityText->setText(value == kUsualQuality ? windowText("usual") : QString::number(value));
  });
  note_->setForegroundRole(QPalette::PlaceholderText);
  note_->setWordWrap(true);
  codecLabel_->setBuddy(codec_);
  qualityLabel_->setBuddy(quality_);

  auto* form = new QFormLayout;
  form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
  form->addRow(windowText("File"), inRow({output_, browse}, this));
  form->addRow(windowText("Frames"), inRow({all_, part_, count_}, this));
  form->addRow(windowText("Depth"), inRow({depth_}, this));
  form->addRow(codecLabel_, inRow({codec_}, this));
  form->addRow(qualityLabel_, inRow({quality_, qualityText}, this));
  form->addRow(QString(), note_);
  auto* column = new QVBoxLayout(this);
  column->setSpacing(14);
  column->addLayout(form);
  column->addWidget(buttons_);
  QPushButton* go = buttons_->addButton(windowText("Export"), QDialogButtonBox::AcceptRole);
  go->setDefault(true);
  buttons_->button(QDialogButtonBox::Cancel)->setText(windowText("Cancel"));
  QObject::connect(buttons_, &QDialogButtonBox::accepted, this, [this] { accept(); });
  QObject::connect(buttons_, &QDialogButtonBox::rejected, this, [this] { reject(); });
  QObject::connect(output_, &QLineEdit::textChanged, this, [this] { outputChanged(); });
  setOutput(QDir(folder).filePath(what_.name + ".mp4"));
}

void ExportDialog::setOutput(const QString& path) {
  output_->setText(QDir::toNativeSeparators(path));
}

void ExportDialog::browse() {
  const QString path = QFileDialog::getSaveFileName(
      this, windowText("Export"), output_->text(),
      windowText("Clips") + " (*.mp4 *.mov *.mkv *.webm *.avi);;" + windowText("Pictures") +
          " (*.png *.jpg *.jpeg *.tif *.tiff *.exr);;" + windowText("All files") + " (*)",
      nullptr, QFileDialog::DontConfirmOverwrite);
  if (!path.isEmpty()) setOutput(path);
}

bool ExportDialog::isClipChosen() const {
  return containerOf(output_->text()) != nullptr;
}

// "shot.png" becomes "shot.%04d.png".
QString ExportDialog::withNumber(QString path) const {
  if (path.contains('%')) return path;
  const qsizetype dot = path.lastIndexOf('.');
  return path.insert(dot < 0 ? path.size() : dot, ".%04d");
}

QString ExportDialog::problem() const {
  const QString path = output_->text();
  if (path.isEmpty()) return windowText("Choose a file.");
  if (what_.inputs.contains(isClipChosen() ? path : withNumber(path))) {
    return windowText("This is an input: choose another file.");
  }
  if (isClipChosen()) return {};
  try {
    fileFormatOf(path.toStdString());
    framePattern(withNumber(path).toStdString());
    return {};
  } catch (const Failure& failure) {
    return QString::fromUtf8(failure.what());
  }
}

void ExportDialog::outputChanged() {
  const ClipContainer* container = containerOf(output_->text());
  const QString name = container ? QString(container->name) : QString();
  if (name != container_) {
    container_ = name;
    codec_->clear();
    const QStringList codecs = container ? QString(container->codecs).split(' ') : QStringList();
    for (const QString& codec : codecs) codec_->addItem(clipCodecIn(*container, codec.toStdString()).title, codec);
  }
  for (QWidget* widget : {static_cast<QWidget*>(codec_), static_cast<QWidget*>(codecLabel_)}) {
    widget->setEnabled(container);
  }
  const QString reason = problem();
  note_->setText(!reason.isEmpty() ? reason
                 : container
                     ? (what_.hasAudio ? windowText("The audio of the first clip goes with it.") : QString())
                     : windowText("Numbered pictures: %1").arg(QFileInfo(withNumber(output_->text())).fileName()));
  for (QAbstractButton* button : buttons_->buttons()) {
    if (buttons_->buttonRole(button) == QDialogButtonBox::AcceptRole) button->setEnabled(reason.isEmpty());
  }
}

QStringList ExportDialog::arguments() const {
  QStringList result;
  if (what_.isOpenEnded) {
    result << "--frames"
           << QStringLiteral("%1-%2").arg(what_.first).arg(what_.first + static_cast<unsigned>(count_->value()) - 1);
  } else if (part_->isChecked() && what_.chosen) {
    result << "--frames" << QStringLiteral("%1-%2").arg(what_.chosen->first).arg(what_.chosen->second);
  }
  if (isClipChosen()) result << "--codec" << codec_->currentData().toString();
  if (const QString depth = depth_->currentData().toString(); !depth.isEmpty()) result << "--depth" << depth;
  if (quality_->value() != kUsualQuality) result << "--quality" << QString::number(quality_->value());
  return result;
}

// The clip, or any of the pictures.
bool ExportDialog::isThere(const QString& output) const {
  const auto pattern = isClipChosen() ? std::nullopt : framePattern(output.toStdString());
  if (!pattern) return QFileInfo::exists(output);
  const std::uint64_t count = what_.isOpenEnded ? static_cast<std::uint64_t>(count_->value()) : what_.count;
  const FrameRange frames{what_.first, what_.first + static_cast<std::uint32_t>(count - 1)};
  return !framesThere(*pattern, frames).empty();
}

void ExportDialog::accept() {
  if (!problem().isEmpty()) return;
  const QString output = isClipChosen() ? output_->text() : withNumber(output_->text());
  if (isThere(output)) {
    QMessageBox box(QMessageBox::Question, windowTitle(), windowText("Replace %1?").arg(QFileInfo(output).fileName()),
                    QMessageBox::Cancel, this);
    box.setInformativeText(windowText("The old file stays until the new one is whole."));
    box.button(QMessageBox::Cancel)->setText(windowText("Cancel"));
    QPushButton* replace = box.addButton(windowText("Replace"), QMessageBox::AcceptRole);
    box.exec();
    if (box.clickedButton() != replace) return;
  }
  const QStringList chosen = arguments();
  QDialog::accept();
  accepted_(output, chosen);
}

}  // namespace host
