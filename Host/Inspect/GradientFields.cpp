// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/GradientFields.h"

#include "Channels/VRTChannelGradient.h"
#include "Controls/VRTInteractions.h"
#include "Controls/VRTPortReference.h"
#include "Controls/VRTTransientColorPicker.h"
#include "GradientEditor/VRTGradientEditor.h"
#include "GradientEditor/VRTGradientKeyboard.h"
#include "Host/Inspect/ColorCodeField.h"
#include "Host/Inspect/ColorSwatch.h"
#include "Host/Inspect/InspectorMetrics.h"
#include "Host/Inspect/InterpolationChoice.h"
#include "Host/Inspect/StepButton.h"
#include "Host/Inspect/WindowText.h"
#include "Ports/VRTObjects.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <algorithm>
#include <limits>

namespace host {
namespace {

constexpr int kSpacing = 6;
constexpr int kColumns = 6;  // of the grid: fields take two or three
constexpr QSize kSwatchSize{44, 50};
constexpr const char* kNoStop = "No stop selected";

constexpr double VRTChannelGradientSampleRGB::*kComponents[] = {
    &VRTChannelGradientSampleRGB::red, &VRTChannelGradientSampleRGB::green, &VRTChannelGradientSampleRGB::blue};

NumberField::Numbers componentNumbers() {
  NumberField::Numbers numbers;
  numbers.minimum = std::numeric_limits<double>::lowest();
  numbers.maximum = std::numeric_limits<double>::max();
  numbers.decimals = 3;
  return numbers;
}

}  // namespace

GradientFields::GradientFields(VRTGradientPort& port, VRTGradientEditor& editor, EntryField::Paste paste,
                               QWidget* parent)
    : ParameterFields(parent), port_(port), editor_(&editor), paste_(std::move(paste)), watch_(port, [this] {
        refresh();
      }) {
  using namespace inspectorMetrics;
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(kLeftInset, 0, kRightInset, 0);
  grid->setSpacing(kSpacing);
  for (int column = 0; column < kColumns; ++column) grid->setColumnStretch(column, 1);
  addHeading(*grid);
  addColor(*grid);
  addPlace(*grid);
  setFixedWidth(kContentWidth);
  orderTabs();
  selection_ = NSNotificationCenter::defaultCenter().addObserver(kVRTGradientSelectionDidChange, &editor,
                                                                 [this](const NSNotification&) { refresh(); });
  refresh();
}

void GradientFields::addHeading(QGridLayout& grid) {
  title_ = new QLabel(this);
  title_->setForegroundRole(QPalette::PlaceholderText);
  previous_ = new StepButton(StepButton::Direction::Left, windowText("Previous stop"), this);
  next_ = new StepButton(StepButton::Direction::Right, windowText("Next stop"), this);
  QObject::connect(previous_, &QAbstractButton::clicked, this, [this] { selectNeighbour(-1); });
  QObject::connect(next_, &QAbstractButton::clicked, this, [this] { selectNeighbour(1); });
  auto* row = new QHBoxLayout;
  row->setSpacing(2);
  row->addWidget(title_, 1);
  row->addWidget(previous_);
  row->addWidget(next_);
  grid.addLayout(row, 0, 0, 1, kColumns);
}

void GradientFields::addColor(QGridLayout& grid) {
  swatch_ = new ColorSwatch({.given = [this](const Rgb& color) { takeColor(color); }, .paste = paste_}, this);
  swatch_->setFixedSize(kSwatchSize);
  swatch_->setAccessibleName(windowText("Color of the stop"));
  swatch_->setToolTip(windowText("Drag the color out, or drop one here; click to choose one"));
  QObject::connect(swatch_, &QAbstractButton::clicked, this, [this] { chooseColor(); });
  code_ = new ColorCodeField([this](const Rgb& color) { takeColor(color); }, this);
  code_->setPaste(paste_);
  components_ = {newComponent("R", "Red", 0), newComponent("G", "Green", 1), newComponent("B", "Blue", 2)};
  opacity_ = newNumber("Opacity", "Opacity", {},
                       {.changed =
                            [this](double value) {
                              change([value](VRTChannelGradientSample& sample) {
                                dynamic_cast<VRTChannelGradientSampleAlpha&>(sample).alpha = value;
                              });
                            },
                        .settled = {},
                        .refusal = {}});
  auto* numbers = new QGridLayout;
  numbers->setHorizontalSpacing(kSpacing - 2);
  numbers->setVerticalSpacing(kSpacing);
  numbers->addWidget(code_, 0, 0, 1, 3);
  numbers->addWidget(opacity_, 0, 0, 1, 3);
  for (int i = 0; i < 3; ++i) {
    numbers->addWidget(components_[static_cast<std::size_t>(i)], 1, i);
    numbers->setColumnStretch(i, 1);
  }
  numbers->setRowMinimumHeight(1, components_[0]->sizeHint().height());
  auto* row = new QHBoxLayout;
  row->setSpacing(kSpacing + 2);
  row->addWidget(swatch_);
  row->addLayout(numbers, 1);
  grid.addLayout(row, 1, 0, 1, kColumns);
}

void GradientFields::addPlace(QGridLayout& grid) {
  position_ = newNumber("Position", "Position", {},
                        {.changed = [this](double value) { moveTo(value); },
                         .settled = [this] { sort(); },
                         .refusal = [this](double value) { return refusalOfPosition(value); }});
  middle_ = newNumber(
      "Middle", "Middle point of the segment that begins here", {},
      {.changed =
           [this](double value) { change([value](VRTChannelGradientSample& sample) { sample.middle = value; }); },
       .settled = {},
       .refusal = {}});
  interpolation_ = new InterpolationChoice(
      [this](std::int32_t kind) {
        changeAtOnce([kind](VRTChannelGradientSample& sample) { sample.interpolation = kind; });
      },
      this);
  grid.addWidget(position_, 2, 0, 1, 3);
  grid.addWidget(middle_, 2, 3, 1, 3);
  grid.addWidget(interpolation_, 3, 0, 1, kColumns);
}

NumberField* GradientFields::newNumber(const char* label, const char* name, NumberField::Numbers numbers,
                                       NumberField::Told told) {
  auto* field = new NumberField(port_, numbers, std::move(told), this);
  field->setLabel(windowText(label));
  field->setName(windowText(name));
  field->setPaste(paste_);
  return field;
}

NumberField* GradientFields::newComponent(const char* label, const char* name, std::size_t index) {
  const auto changed = [this, component = kComponents[index]](double value) {
    change([component, value](VRTChannelGradientSample& sample) {
      dynamic_cast<VRTChannelGradientSampleRGB&>(sample).*component = value;
    });
  };
  return newNumber(label, name, componentNumbers(), {.changed = changed, .settled = {}, .refusal = {}});
}

void GradientFields::orderTabs() {
  QWidget* before = nullptr;
  for (QWidget* part :
       {static_cast<QWidget*>(previous_), static_cast<QWidget*>(next_), static_cast<QWidget*>(swatch_),
        static_cast<QWidget*>(code_), static_cast<QWidget*>(opacity_), static_cast<QWidget*>(components_[0]),
        static_cast<QWidget*>(components_[1]), static_cast<QWidget*>(components_[2]), static_cast<QWidget*>(position_),
        static_cast<QWidget*>(middle_)}) {
    if (before) QWidget::setTabOrder(before, part);
    before = part;
  }
}

VRTChannelGradient* GradientFields::channel() const {
  const auto value = std::dynamic_pointer_cast<VRTGradient>(port_.rawValue());
  return value ? value->kxChannelGradient() : nullptr;
}

VRTChannelGradientSample* GradientFields::sample() const {
  return editor_ && channel() ? editor_->getSelectedSample() : nullptr;
}

VRTChannelGradientSampleRGB* GradientFields::colorSample() const {
  return dynamic_cast<VRTChannelGradientSampleRGB*>(sample());
}

VRTChannelGradientSampleAlpha* GradientFields::opacitySample() const {
  return dynamic_cast<VRTChannelGradientSampleAlpha*>(sample());
}

VRTChannelGradientFolder* GradientFields::folder() const {
  VRTChannelGradient* gradient = channel();
  if (!gradient || !sample()) return nullptr;
  if (colorSample()) return &gradient->rgbFolder;
  return &gradient->alphaFolder;
}

std::vector<VRTChannelGradientSample*> GradientFields::inOrder(const VRTChannelGradientFolder& folder) {
  std::vector<VRTChannelGradientSample*> samples;
  for (VRTChannelBase* child : folder.getDescendants()) {
    if (auto* sample = dynamic_cast<VRTChannelGradientSample*>(child)) samples.push_back(sample);
  }
  std::stable_sort(samples.begin(), samples.end(),
                   [](const auto* a, const auto* b) { return a->position < b->position; });
  return samples;
}

std::vector<double> GradientFields::otherPositions() const {
  std::vector<double> positions;
  const VRTChannelGradientFolder* present = folder();
  if (!present) return positions;
  const VRTChannelGradientSample* selected = sample();
  for (const VRTChannelGradientSample* other : inOrder(*present)) {
    if (other != selected) positions.push_back(other->position);
  }
  return positions;
}

// Whoever is told may replace the gradient and destroy the editor.
void GradientFields::change(const Change& change) {
  if (!sample()) return;
  const VRTPortChange announced(VRTObjectReference<QCPort>(&port_).lock());
  if (VRTChannelGradientSample* present = sample()) change(*present);
}

void GradientFields::changeAtOnce(const Change& change) {
  QCPort& port = port_;
  const QPointer<GradientFields> self(this);
  VRTPostStartInteraction(&port);
  if (self) this->change(change);
  VRTPostEndInteraction(&port);
}

bool GradientFields::takeColor(const Rgb& color) {
  if (!colorSample()) return false;
  changeAtOnce([&color](VRTChannelGradientSample& sample) {
    auto* stop = dynamic_cast<VRTChannelGradientSampleRGB*>(&sample);
    if (!stop) return;
    for (std::size_t i = 0; i < std::size(kComponents); ++i) stop->*kComponents[i] = color[i];
  });
  return true;
}

QString GradientFields::refusalOfPosition(double position) const {
  const std::vector<double> others = otherPositions();
  const bool isTaken = std::find(others.begin(), others.end(), position) != others.end();
  return isTaken ? windowText("Another stop stands at %1").arg(position_->textOf(position)) : QString();
}

// Steps and drags pass other stops by; a typed place is as it was typed.
void GradientFields::moveTo(double position) {
  const VRTChannelGradientSample* present = sample();
  if (!present) return;
  const std::vector<double> others = otherPositions();
  const bool isTaken = std::find(others.begin(), others.end(), position) != others.end();
  const double free = isTaken ? VRTFreeGradientPosition(present->position, position, others) : position;
  change([free](VRTChannelGradientSample& sample) { sample.position = free; });
}

void GradientFields::sort() {
  if (!folder()) return;
  const VRTPortChange announced(VRTObjectReference<QCPort>(&port_).lock());
  if (VRTChannelGradientFolder* present = folder()) present->sortAndRename();
}

// Color stops first, then opacity stops, in a circle.
void GradientFields::selectNeighbour(int direction) {
  const VRTChannelGradient* gradient = channel();
  if (!gradient || !editor_) return;
  std::vector<VRTChannelGradientSample*> stops = inOrder(gradient->rgbFolder);
  const std::vector<VRTChannelGradientSample*> opacities = inOrder(gradient->alphaFolder);
  stops.insert(stops.end(), opacities.begin(), opacities.end());
  if (stops.empty()) return;
  const auto count = std::ssize(stops);
  const auto present = std::find(stops.begin(), stops.end(), sample());
  const std::ptrdiff_t place = present == stops.end() ? (direction > 0 ? -1 : 0) : present - stops.begin();
  editor_->setSelectedSample(stops[static_cast<std::size_t>((place + direction + count) % count)], false, false);
}

// In the panel of the editors, which tells of itself; when it is cancelled, the color returns to its last digits.
void GradientFields::chooseColor() {
  const VRTChannelGradientSample* present = sample();
  if (!present) return;
  const bool isColor = colorSample() != nullptr;
  const auto reference = editor_->getSelection();
  const QPointer<GradientFields> self(this);
  const auto isSame = [self, reference] { return self && self->sample() && self->sample() == reference->getChannel(); };

  VRTTransientColorPicker::Options options;
  const Rgb old = swatch_->color().value_or(Rgb{});
  const double oldAlpha = isColor ? 1 : opacitySample()->alpha;
  options.oldColor = NSColor::colorWithCalibratedRed(old[0], old[1], old[2], 1);
  options.didEnd = [self, isSame, isColor, old, oldAlpha](bool taken) {
    if (taken || !isSame()) return;
    self->change([&](VRTChannelGradientSample& sample) {
      auto* stop = dynamic_cast<VRTChannelGradientSampleRGB*>(&sample);
      for (std::size_t i = 0; stop && i < old.size(); ++i) stop->*kComponents[i] = old[i];
      if (!isColor) dynamic_cast<VRTChannelGradientSampleAlpha&>(sample).alpha = oldAlpha;
    });
  };
  const auto take = [self, isSame, isColor](VRTTransientColorPicker& picker) {
    if (!isSame() || !self->editor_) return;
    isColor ? self->editor_->updateSelectedSampleRGBFrom(&picker)
            : self->editor_->updateSelectedSampleAlphaFrom(&picker);
  };
  const QPoint place = swatch_->mapToGlobal(QPoint(0, swatch_->height()));
  const NSEvent noClick({}, 0, 0, place);
  if (isColor) {
    VRTTransientColorPicker::popupColorPickerFrom(editor_, noClick, take, options);
  } else {
    VRTTransientColorPicker::popupGrayscalePickerFrom(editor_, noClick, take, options);
  }
}

void GradientFields::forgetTyping() {
  for (EntryField* field :
       {static_cast<EntryField*>(code_), static_cast<EntryField*>(components_[0]),
        static_cast<EntryField*>(components_[1]), static_cast<EntryField*>(components_[2]),
        static_cast<EntryField*>(opacity_), static_cast<EntryField*>(position_), static_cast<EntryField*>(middle_)}) {
    field->forgetTyping();
  }
}

void GradientFields::refresh() {
  VRTChannelGradientSample* shown = sample();
  const bool isAnother = shown_.getChannel() != shown;
  shown_ = VRTChannelRef(shown);
  const auto* color = colorSample();
  const auto* opacity = opacitySample();
  const VRTChannelGradient* gradient = channel();
  bool hasNext = false;
  QString title = windowText(kNoStop);
  if (shown) {
    const auto stops = inOrder(*folder());
    const auto place = std::find(stops.begin(), stops.end(), shown) - stops.begin() + 1;
    hasNext = place < std::ssize(stops);
    title = windowText(color ? "Color stop %1 of %2" : "Opacity stop %1 of %2").arg(place).arg(stops.size());
  }
  title_->setText(title);
  for (QAbstractButton* button : {previous_, next_}) button->setEnabled(gradient && editor_);

  code_->setVisible(!opacity);
  opacity_->setVisible(opacity != nullptr);
  swatch_->setEnabled(shown);
  swatch_->setTakesColors(color != nullptr);
  code_->setEnabled(color);
  std::optional<Rgb> look;
  if (color) look = Rgb{color->red, color->green, color->blue};
  code_->setColor(look);
  for (std::size_t i = 0; i < components_.size(); ++i) {
    components_[i]->setVisible(!opacity);
    components_[i]->setEnabled(color);
    components_[i]->setValue(color ? std::optional(color->*kComponents[i]) : std::nullopt);
  }
  if (opacity) look = Rgb{opacity->alpha, opacity->alpha, opacity->alpha};
  opacity_->setValue(opacity ? std::optional(opacity->alpha) : std::nullopt);
  swatch_->setColor(look);

  position_->setEnabled(shown);
  position_->setValue(shown ? std::optional(shown->position) : std::nullopt);
  const bool isSmooth = shown && shown->interpolation == VRTGradientSmooth;
  middle_->setEnabled(hasNext && isSmooth);
  middle_->setHint(hasNext && !isSmooth ? windowText("Only smooth segments have a middle point") : QString());
  middle_->setValue(shown ? std::optional(shown->middle) : std::nullopt);
  interpolation_->setEnabled(hasNext);
  interpolation_->setInterpolation(shown ? std::optional(shown->interpolation) : std::nullopt);
  if (isAnother) forgetTyping();
}

}  // namespace host
