// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/TarnInterfaceFile.h"

#include "Platform/CoreFoundation/CFBundle.h"
#include "Platform/TarnKit/NSPopUpButton.h"
#include "Platform/TarnKit/NSTarnButton.h"
#include "Platform/TarnKit/NSTarnView.h"
#include "Platform/TarnKit/TarnReport.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QFile>
#include <QUiLoader>
#include <cstddef>
#include <cstdio>

namespace {

using Factories = std::map<std::string, TarnInterfaceFile::Factory>;

template <class View>
QWidget* make(NSRect frame, QWidget* parent) {
  return new View(frame, parent);
}

Factories& factories() {
  static auto& table = *new Factories{
      {"NSTarnView", make<NSTarnView>}, {"NSTarnButton", make<NSTarnButton>}, {"NSPopUpButton", make<NSPopUpButton>}};
  return table;
}

// Makes registered classes; Qt's own come from the base.
class Loader : public QUiLoader {
 public:
  explicit Loader(std::string file) : file_(std::move(file)) { clearPluginPaths(); }

  QWidget* createWidget(const QString& className, QWidget* parent, const QString& name) override {
    const auto factory = factories().find(className.toStdString());
    QWidget* widget =
        factory != factories().end() ? factory->second(NSRect{}, parent) : createKnown(className, parent, name);
    if (!widget) {
      TarnReportOnce("Interface file " + file_ + ": no class " + className.toStdString());
      widget = new QWidget(parent);
    }
    widget->setObjectName(name);
    return widget;
  }

 private:
  QWidget* createKnown(const QString& className, QWidget* parent, const QString& name) {
    return availableWidgets().contains(className) ? QUiLoader::createWidget(className, parent, name) : nullptr;
  }

  std::string file_;
};

std::nullptr_t fail(std::string* reason, const std::string& why) {
  if (reason) *reason = why;
  return nullptr;
}

QWidget* findChild(QWidget& root, const std::string& name) {
  const QString wanted = QString::fromStdString(name);
  return root.objectName() == wanted ? &root : root.findChild<QWidget*>(wanted);
}

}  // namespace

void TarnInterfaceFile::registerClass(const std::string& name, Factory factory) {
  factories()[name] = std::move(factory);
}

void TarnInterfaceFile::addAction(const std::string& name, Action action) {
  actions_[name] = std::move(action);
}

std::unique_ptr<QWidget> TarnInterfaceFile::load(const std::string& bundleIdentifier, const std::string& name,
                                                 std::string* reason) const {
  const CFOwned<CFStringRef> identifier(
      CFStringCreateWithCString(nullptr, bundleIdentifier.c_str(), kCFStringEncodingUTF8));
  const CFBundleRef bundle = CFBundleGetBundleWithIdentifier(identifier.get());
  if (!bundle) {
    return fail(reason, "no bundle " + bundleIdentifier);
  }
  const std::string path = CFBundleCopyResourcePath(bundle, name, "ui");
  if (path.empty()) {
    return fail(reason, "no interface file " + name + " in " + CFBundleGetPath(bundle));
  }
  return loadFile(path, reason);
}

std::unique_ptr<NSTarnView> TarnInterfaceFile::loadMasterView(const std::string& bundleIdentifier,
                                                              const std::string& name) const {
  std::string reason = "its root is no view named masterView";
  std::unique_ptr<QWidget> root = load(bundleIdentifier, name, &reason);
  auto* master = dynamic_cast<NSTarnView*>(root.get());
  if (!master || master->objectName() != QLatin1String("masterView")) {
    std::fprintf(stderr, "Unable to load nib %s: %s\n", name.c_str(), reason.c_str());
    return nullptr;
  }
  static_cast<void>(root.release());
  return std::unique_ptr<NSTarnView>(master);
}

std::unique_ptr<QWidget> TarnInterfaceFile::loadFile(const std::string& path, std::string* reason) const {
  QFile file(QString::fromStdString(path));
  if (!file.open(QIODevice::ReadOnly)) {
    return fail(reason, path + ": " + file.errorString().toStdString());
  }
  Loader loader(path);
  std::unique_ptr<QWidget> root(loader.load(&file));
  if (!root) {
    return fail(reason, path + ": " + loader.errorString().toStdString());
  }
  bindOutlets(*root, path);
  bindActions(*root, path);
  return root;
}

void TarnInterfaceFile::bindOutlets(QWidget& root, const std::string& path) const {
  for (const Outlet& outlet : outlets_) {
    QWidget* child = findChild(root, outlet.name);
    if (outlet.set(child)) continue;
    TarnReportOnce("Interface file " + path + ": " + outlet.name + (child ? " has another class" : " is missing"));
  }
}

void TarnInterfaceFile::bindActions(QWidget& root, const std::string& path) const {
  for (QWidget* child : root.findChildren<QWidget*>()) {
    const std::string name = child->property("action").toString().toStdString();
    if (name.empty()) continue;
    const auto action = actions_.find(name);
    auto* button = qobject_cast<QAbstractButton*>(child);
    auto* popUp = qobject_cast<QComboBox*>(child);
    if (action == actions_.end() || (!button && !popUp)) {
      TarnReportOnce("Interface file " + path + ": nothing answers to action " + name);
      continue;
    }
    // A copy runs: the action may delete the sender, and the connection with it.
    const auto run = [function = action->second, child] {
      const Action copy = function;
      if (copy) copy(child);
    };
    if (button) QObject::connect(button, &QAbstractButton::clicked, button, run);
    if (popUp) QObject::connect(popUp, &QComboBox::activated, popUp, run);
  }
}
