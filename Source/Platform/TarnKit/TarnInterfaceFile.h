// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSGeometry.h"
#include "Platform/TarnKit/NSTarnView.h"
#include "Platform/Visibility.h"

#include <QWidget>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

// An interface file: a Qt Designer form (NAME.ui) among the resources of a bundle.
//
// The form gives the views of a panel and their first frames. A widget's class may be any of Qt's or one registered
// here. The owner states which children it wants (outlets, by object name) and what it answers to (actions); a button
// or pop-up names its action in the dynamic string property "action", for example "rgbSpread:".
//
//   TarnInterfaceFile file;
//   file.addOutlet("gradientView", gradientView_);
//   file.addAction("rgbSpread:", [this](QWidget*) { rgbSpread(); });
//   std::unique_ptr<QWidget> root = file.load(bundleIdentifier, "TarnGradientEditor", &reason);
class TARN_EXPORT TarnInterfaceFile {
 public:
  using Action = std::function<void(QWidget* sender)>;
  using Factory = std::function<QWidget*(NSRect frame, QWidget* parent)>;

  // Makes a class known to every file loaded later; a name registered again is replaced. NSTarnView, NSTarnButton and
  // NSPopUpButton are known already.
  static void registerClass(const std::string& name, Factory factory);
  template <class View>
  static void registerClass(const std::string& name) {
    registerClass(name, [](NSRect frame, QWidget* parent) -> QWidget* { return new View(frame, parent); });
  }

  // Sets `outlet` to the child (or the root) of that object name; to null when there is none or it has another class.
  template <class View>
  void addOutlet(const std::string& name, View*& outlet) {
    outlet = nullptr;
    outlets_.push_back({name, [&outlet](QWidget* child) { return (outlet = dynamic_cast<View*>(child)) != nullptr; }});
  }
  // Runs when a button that names the action is clicked, or the user chooses an item of a pop-up that names it.
  void addAction(const std::string& name, Action action);

  // The form's root widget, hidden and without a parent, owned by the caller; it ends the actions when it dies. Null
  // with the reason when the file is missing or broken. Outlets that are missing or of another class, actions that
  // nobody answers, and classes that nobody knows are reported by name on standard error; the rest works.
  std::unique_ptr<QWidget> load(const std::string& bundleIdentifier, const std::string& name,
                                std::string* reason = nullptr) const;
  // The form of a panel: its root, a view named "masterView". Null when there is none, which is logged as "Unable to
  // load nib" with the name and the reason.
  std::unique_ptr<NSTarnView> loadMasterView(const std::string& bundleIdentifier, const std::string& name) const;
  // The form at a path.
  std::unique_ptr<QWidget> loadFile(const std::string& path, std::string* reason = nullptr) const;

 private:
  struct Outlet {
    std::string name;
    std::function<bool(QWidget*)> set;
  };
  void bindOutlets(QWidget& root, const std::string& path) const;
  void bindActions(QWidget& root, const std::string& path) const;

  std::vector<Outlet> outlets_;
  std::map<std::string, Action> actions_;
};
