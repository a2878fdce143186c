// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTLocalizedText.h"
#include "Controls/VRTTheme.h"
#include "Controls/VRTThemeStore.h"
#include "GradientEditor/VRTGradientEditor.h"
#include "GradientEditor/VRTGradientEditorLayout.h"
#include "GradientEditor/VRTGradientGutterAlpha.h"
#include "GradientEditor/VRTGradientGutterRGB.h"
#include "Platform/TarnKit/TarnInterfaceFile.h"

// The panel of the gradient editor: its parts, from the interface file, and their layout.

namespace {

constexpr NSRect kPanelFrame = {{0, 0}, {236, 76}};

void registerClasses() {
  static const bool once = [] {
    TarnInterfaceFile::registerClass<VRTGradientView>("VRTGradientView");
    TarnInterfaceFile::registerClass<VRTGradientGutterRGB>("VRTGradientGutterRGB");
    TarnInterfaceFile::registerClass<VRTGradientGutterAlpha>("VRTGradientGutterAlpha");
    return true;
  }();
  static_cast<void>(once);
}

void giveImage(NSTarnButton* button, int index) {
  if (!button) return;
  button->cell().setImageSource(TarnThemeImageSource(VRTThemeAtomGutterButton, VRTTheme::theme(), index, false));
  button->cell().setTitle(std::nullopt);
}

void giveName(NSTarnButton* button, const char* english) {
  if (!button) return;
  button->setAccessibleName(VRTLocalizedText(english));
  button->setToolTip(button->accessibleName());
}

}  // namespace

void VRTGradientEditor::loadInterfaceFile() {
  registerClasses();
  VRTGradientView* preview = nullptr;
  VRTGradientGutter *gutterRGB = nullptr, *gutterAlpha = nullptr;
  NSTarnButton *spreadRGB = nullptr, *flopRGB = nullptr, *spreadAlpha = nullptr, *flopAlpha = nullptr;
  TarnInterfaceFile file;
  file.addOutlet("gradientView", preview);
  file.addOutlet("gradientGutterRGB", gutterRGB);
  file.addOutlet("gradientGutterAlpha", gutterAlpha);
  file.addOutlet("rgbSpread", spreadRGB);
  file.addOutlet("rgbFlop", flopRGB);
  file.addOutlet("alphaSpread", spreadAlpha);
  file.addOutlet("alphaFlop", flopAlpha);
  file.addAction("rgbSpread:", [this](QWidget* sender) { rgbSpread(sender); });
  file.addAction("rgbFlop:", [this](QWidget* sender) { rgbFlop(sender); });
  file.addAction("alphaSpread:", [this](QWidget* sender) { alphaSpread(sender); });
  file.addAction("alphaFlop:", [this](QWidget* sender) { alphaFlop(sender); });

  std::unique_ptr<NSTarnView> master = file.loadMasterView(VRTFrameworkBundleIdentifier, "TarnGradientEditor");
  if (!master) return;
  _masterView = master.release();
  _gradientView = preview;
  _gradientGutterRGB = gutterRGB;
  _gradientGutterAlpha = gutterAlpha;
  _rgbSpread = spreadRGB;
  _rgbFlop = flopRGB;
  _alphaSpread = spreadAlpha;
  _alphaFlop = flopAlpha;
  awakeFromNib();
}

void VRTGradientEditor::awakeFromNib() {
  addSubview(*_masterView);
  giveImage(_rgbSpread, 0);
  giveImage(_alphaSpread, 0);
  giveImage(_rgbFlop, 1);
  giveImage(_alphaFlop, 1);
  nameButtons();
}

void VRTGradientEditor::nameButtons() {
  giveName(_rgbSpread, "Spread color stops evenly");
  giveName(_rgbFlop, "Mirror color stops");
  giveName(_alphaSpread, "Spread opacity stops evenly");
  giveName(_alphaFlop, "Mirror opacity stops");
}

std::vector<QWidget*> VRTGradientEditor::optionalParts() const {
  std::vector<QWidget*> parts;
  for (QWidget* part : {static_cast<QWidget*>(_gradientGutterAlpha), static_cast<QWidget*>(_alphaSpread),
                        static_cast<QWidget*>(_alphaFlop), static_cast<QWidget*>(_gradientGutterRGB),
                        static_cast<QWidget*>(_rgbSpread), static_cast<QWidget*>(_rgbFlop)}) {
    if (part) parts.push_back(part);
  }
  return parts;
}

bool VRTGradientEditor::manageSubview(QWidget* view, bool on) {
  if (!view || !_masterView) return false;
  if (!on) {
    if (auto* tarnView = dynamic_cast<NSTarnView*>(view); tarnView && view->parentWidget()) {
      tarnView->removeFromSuperview();
    } else if (view->parentWidget()) {
      view->setParent(nullptr);
    }
    return false;
  }
  if (view->parentWidget()) return false;
  _masterView->addSubview(*view);
  return true;
}

void VRTGradientEditor::update() {
  if (!_masterView) return;
  const QPointer<VRTGradientEditor> self(this);
  const bool hasGradient = getGradientChannel() != nullptr;
  if (!hasGradient) endLostInteractions();
  const VRTGradientEditorLayout layout(bounds().size.width, hasGradient);
  const bool sizeChanged = !NSEqualSizes(_masterView->frame().size, layout.panel);
  if (sizeChanged) {
    _masterView->setFrameSize(layout.panel);
    setFrameSize(layout.panel);
  }
  const struct {
    QPointer<QWidget> view;
    NSRect frame;
    bool on;
  } parts[] = {
      {_gradientView.data(), layout.preview, true},
      {_gradientGutterAlpha.data(), layout.gutterAlpha, hasGradient},
      {_alphaSpread.data(), layout.alphaSpread, hasGradient},
      {_alphaFlop.data(), layout.alphaFlop, hasGradient},
      {_gradientGutterRGB.data(), layout.gutterRGB, hasGradient},
      {_rgbSpread.data(), layout.rgbSpread, hasGradient},
      {_rgbFlop.data(), layout.rgbFlop, hasGradient},
  };
  bool anyShown = false;
  for (const auto& part : parts) {
    if (!part.view) continue;
    const bool shown = manageSubview(part.view, part.on);
    if (!self) return;
    if (part.view && (shown || (sizeChanged && part.view->parentWidget()))) NSSetFrame(*part.view, part.frame);
    anyShown = anyShown || shown;
  }
  if (anyShown) orderTabs();
  if (_gradientView) _gradientView->update();
  if (_gradientGutterRGB) _gradientGutterRGB->update();
  if (_gradientGutterAlpha) _gradientGutterAlpha->update();
}

void VRTGradientEditor::orderTabs() {
  QWidget* before = nullptr;
  for (QWidget* part : optionalParts()) {
    if (before) QWidget::setTabOrder(before, part);
    before = part;
  }
}

void VRTRegisterGradientEditor() {
  VRTRegisterParameterViewFactory("VRTGradientPort", [](QCObjectPort& port) -> NSTarnView* {
    auto* gradientPort = dynamic_cast<VRTGradientPort*>(&port);
    if (!gradientPort) return nullptr;
    auto* editor = new VRTGradientEditor(kPanelFrame);
    editor->setGradientPort(gradientPort);
    editor->setEnabled(true);
    return editor;
  });
}
