// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/CFBundle.h"
#include "Platform/TarnKit/NSPopUpButton.h"
#include "Platform/TarnKit/NSTarnButton.h"
#include "Platform/TarnKit/NSTarnView.h"
#include "Platform/TarnKit/TarnInterfaceFile.h"
#include "Tests/TarnKit/Pictures.h"

namespace {

struct PanelView : NSTarnView {
  using NSTarnView::NSTarnView;
  bool isFlipped() const override { return true; }
};

std::string widget(const char* type, const char* name, QRect r, const std::string& inside = "") {
  std::ostringstream text;
  text << "<widget class=\"" << type << "\" name=\"" << name << "\"><property name=\"geometry\"><rect><x>" << r.x()
       << "</x><y>" << r.y() << "</y><width>" << r.width() << "</width><height>" << r.height()
       << "</height></rect></property>" << inside << "</widget>";
  return text.str();
}

std::string action(const std::string& name) {
  return "<property name=\"action\" stdset=\"0\"><string>" + name + "</string></property>";
}

std::string form(const std::string& inside) {
  return "<?xml version=\"1.0\"?><ui version=\"4.0\"><class>Form</class>" +
         widget("NSTarnView", "masterView", QRect(0, 0, 236, 76), inside) + "<resources/><connections/></ui>";
}

struct InterfaceFile : testing::Test {
  InterfaceFile() { TarnInterfaceFile::registerClass<PanelView>("PanelView"); }

  std::unique_ptr<QWidget> load(const TarnInterfaceFile& file, const std::string& text) {
    testing::internal::CaptureStderr();
    std::unique_ptr<QWidget> root = file.loadFile(folder.write("Form.ui", text), &reason);
    reports = testing::internal::GetCapturedStderr();
    return root;
  }

  TestFolder folder;
  std::string reason, reports;
};

TEST_F(InterfaceFile, GivesViewsFramesOutletsAndActions) {
  const std::string text = form(widget("PanelView", "panel", QRect(10, 6, 100, 30)) +
                                widget("NSTarnButton", "button", QRect(216, 0, 20, 20), action("press:")) +
                                widget("NSPopUpButton", "popUp", QRect(0, 50, 80, 20), action("choose:")) +
                                widget("QLabel", "label", QRect(0, 0, 9, 9)));
  TarnInterfaceFile file;
  NSTarnView* master = nullptr;
  PanelView* panel = nullptr;
  NSTarnButton* button = nullptr;
  NSPopUpButton* popUp = nullptr;
  std::vector<std::string> senders;
  file.addOutlet("masterView", master);
  file.addOutlet("panel", panel);
  file.addOutlet("button", button);
  file.addOutlet("popUp", popUp);
  for (const char* name : {"press:", "choose:"}) {
    file.addAction(name, [&](QWidget* sender) { senders.push_back(sender->objectName().toStdString()); });
  }
  const std::unique_ptr<QWidget> root = load(file, text);
  ASSERT_TRUE(root) << reason;
  EXPECT_EQ(reports, "");
  ASSERT_TRUE(master && panel && button && popUp);
  EXPECT_EQ(root.get(), master);
  // 76 high: the panel's lower edge is 36 from the top.
  EXPECT_EQ(panel->frame().origin.y, 40);
  master->setFrameSize({236, 80});
  EXPECT_EQ(panel->geometry(), QRect(10, 10, 100, 30));
  for (const char* title : {"One", "Two"}) popUp->addItemWithTitle(title);
  for (const int item : {1, 7}) popUp->selectItemAtIndex(item);
  EXPECT_EQ(popUp->indexOfSelectedItem(), 1);
  root->show();
  QTest::mouseClick(button, Qt::LeftButton);
  QTest::keyClick(popUp, Qt::Key_Up);
  EXPECT_EQ(senders, (std::vector<std::string>{"button", "popUp"}));

  TarnInterfaceFile deleting;
  std::unique_ptr<QWidget> mortal;
  deleting.addOutlet("button", button);
  deleting.addAction("press:", [&](QWidget*) { mortal.reset(); });
  deleting.addAction("choose:", [](QWidget*) {});
  mortal = load(deleting, text);
  QTest::mouseClick(button, Qt::LeftButton);
  EXPECT_FALSE(mortal) << "an action may delete the panel";
}

TEST_F(InterfaceFile, ReportsByNameWhatDoesNotFitAndKeepsTheRest) {
  const std::string text =
      form(widget("QLabel", "panel", QRect(0, 0, 9, 9)) + widget("NoSuchView", "strange", QRect(0, 0, 9, 9)) +
           widget("NSTarnButton", "button", QRect(0, 0, 20, 20), action("nobody:")));
  TarnInterfaceFile file;
  PanelView *panel = nullptr, *missing = nullptr;
  NSTarnButton* button = nullptr;
  file.addOutlet("panel", panel);
  file.addOutlet("lost", missing);
  file.addOutlet("button", button);
  const std::unique_ptr<QWidget> root = load(file, text);
  ASSERT_TRUE(root);
  ASSERT_TRUE(!panel && !missing && button);
  for (const char* name : {"panel has another class", "lost is missing", "NoSuchView", "nobody:"}) {
    EXPECT_NE(reports.find(name), std::string::npos) << name << " in " << reports;
  }
  QTest::mouseClick(button, Qt::LeftButton);
}

TEST_F(InterfaceFile, IsFoundInABundleByNameOrFailsWithTheReason) {
  const TarnInterfaceFile file;
  const auto failsWith = [&](const std::unique_ptr<QWidget>& root, const char* part) {
    return !root && reason.find(part) != std::string::npos;
  };
  for (const char* text : {"", "no form", "<ui version=\"4.0\">", "<ui version=\"4.0\"/>", "<html/>"}) {
    reason.clear();
    EXPECT_TRUE(failsWith(load(file, text), "Form.ui")) << text;
  }
  EXPECT_TRUE(failsWith(file.loadFile(folder.path("none.ui"), &reason), "none.ui"));
  EXPECT_TRUE(failsWith(file.load("org.example.nobody", "Form", &reason), "org.example.nobody"));
  folder.write(
      "Panels.bundle/Contents/Info.plist",
      "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key><string>org.example.panels</string></dict></plist>");
  folder.write("Panels.bundle/Contents/Resources/Panel.ui", form(""));
  const CFBundleRef bundle = CFBundleCreate(nullptr, folder.path("Panels.bundle"), &reason);
  ASSERT_TRUE(bundle) << reason;
  EXPECT_TRUE(file.load("org.example.panels", "Panel", &reason)) << reason;
  EXPECT_TRUE(failsWith(file.load("org.example.panels", "Other", &reason), "Other"));
  CFRelease(bundle);
}

}  // namespace
