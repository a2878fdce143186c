// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSKeyedArchiver.h"
#include "Tests/Host/JsonChecker.h"
#include "Tests/Host/Program.h"
#include "Tests/Host/TestImages.h"

#include <gtest/gtest.h>

#include <set>

namespace {

std::string plist(const std::string& content) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + content + "</plist>\n";
}

std::string numbers(const std::vector<std::string>& texts) {
  std::string list = "<array>";
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const std::string type = texts[i].find('.') == std::string::npos ? "integer" : "real";
    list += "<" + type + ">" + texts[i] + "</" + type + ">";
  }
  return list + "</array>";
}

// Numbers that need all their digits, and a zero with a sign.
std::string gradientPlist() {
  return plist("<dict><key>rgbSamples</key>" +
               numbers({"-0.0", "0.5", "1", "0.10000000000000001", "0.0", "0.33333333333333331", "1.0", "0.25", "2",
                        "0.9", "0.80000000000000004", "0.1"}) +
               "<key>alphaSamples</key>" + numbers({"0.0", "0.5", "2", "0.75"}) + "</dict>");
}

std::string levelsPlist() {
  std::string text = "<dict><key>selectedChannel</key><integer>2</integer>";
  for (const std::string channel : {"RGB", "Red", "Green", "Blue", "Alpha"}) {
    text += "<key>blackIn" + channel + "</key><real>0.050000000000000003</real>";
    text += "<key>blackOut" + channel + "</key><real>0.0</real>";
    text += "<key>whiteIn" + channel + "</key><real>0.90000000000000002</real>";
    text += "<key>whiteOut" + channel + "</key><real>1.0</real>";
    text += "<key>gamma" + channel + "</key><real>1.2</real>";
  }
  return plist(text + "</dict>");
}

// An archive of a dictionary, as another program would write it.
std::string opaquePlist() {
  return plist(
      "<dict><key>$archiver</key><string>NSKeyedArchiver</string><key>$objects</key><array><string>$null</string><dict>"
      "<key>$class</key><dict><key>CF$UID</key><integer>4</integer></dict>"
      "<key>NS.keys</key><array><dict><key>CF$UID</key><integer>2</integer></dict></array>"
      "<key>NS.objects</key><array><dict><key>CF$UID</key><integer>3</integer></dict></array></dict>"
      "<string>seed</string><integer>42</integer>"
      "<dict><key>$classes</key><array><string>NSDictionary</string><string>NSObject</string></array>"
      "<key>$classname</key><string>NSDictionary</string></dict></array>"
      "<key>$top</key><dict><key>root</key><dict><key>CF$UID</key><integer>1</integer></dict></dict>"
      "<key>$version</key><integer>100000</integer></dict>");
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
    text.replace(at, from.size(), to);
  return text;
}

struct Document {
  const char* name;
  std::string content;
  const char* effect;
  const char* port;
  const char* className;
  const char* olderName;
};

class SavedDocument : public testing::TestWithParam<Document> {};

}  // namespace

// A state in either format and form, and an archive under the older class name, render the same picture to the byte.
TEST_P(SavedDocument, SurvivesEveryFormatAndForm) {
  const Document& document = GetParam();
  const TemporaryFolder folder;
  const auto at = [&](const std::string& name) { return folder.path() + "/" + name; };
  writeFile(at("saved.plist"), document.content);
  const auto convert = [&](const std::string& from, const std::string& to, const std::string& format,
                           const std::string& form) {
    vortoSucceeds({"state", at(from), "--convert", format, "--form", form, "--output", at(to)});
  };
  convert("saved.plist", "dictionary.xml", "xml", "dictionary");
  convert("saved.plist", "dictionary.binary", "binary", "dictionary");
  convert("dictionary.binary", "archive.xml", "xml", "archive");
  convert("saved.plist", "archive.binary", "binary", "archive");
  convert("archive.binary", "back.xml", "xml", "dictionary");
  writeFile(at("older.xml"), replaced(readFile(at("archive.xml")), document.className, document.olderName));
  convert("older.xml", "older.binary", "binary", "archive");
  EXPECT_NE(readFile(at("older.binary")).find(document.olderName), std::string::npos) << "the class is kept";
  EXPECT_EQ(readFile(at("older.binary")).find(document.className), std::string::npos);
  EXPECT_TRUE(readFile(at("archive.binary")).starts_with("bplist00"));

  std::set<std::string> pictures;
  std::set<std::string> texts;
  for (const char* state : {"saved.plist", "dictionary.xml", "dictionary.binary", "archive.xml", "archive.binary",
                            "back.xml", "older.xml", "older.binary"}) {
    vortoSucceeds({"render", document.effect, "--input", VORTO_PHOTOS "/coffee.png", "--depth", "16", "--state",
                   std::string(document.port) + "=" + at(state), "--output", at("out.tif")});
    pictures.insert(readFile(at("out.tif")));
    const std::string text = vortoSucceeds({"state", at(state)}).out;
    texts.insert(text.substr(text.find('\n')));  // the first line names the class and the form
  }
  EXPECT_EQ(pictures.size(), 1u);
  EXPECT_EQ(texts.size(), 1u);

  vortoSucceeds(
      {"render", document.effect, "--input", VORTO_PHOTOS "/coffee.png", "--depth", "16", "--output", at("out.tif")});
  EXPECT_FALSE(pictures.contains(readFile(at("out.tif")))) << "the state matters";
}

INSTANTIATE_TEST_SUITE_P(
    Host, SavedDocument,
    testing::Values(Document{"Gradient", gradientPlist(), "Gradient Map", "gradient", "VRTGradient", "TarnGradient"},
                    Document{"Levels", levelsPlist(), "Levels", "levels", "VRTHistogram", "TarnHistogram"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(State, PrintsTables) {
  const TemporaryFolder folder;
  const std::string path = folder.path() + "/state.plist";
  writeFile(path, gradientPlist());
  EXPECT_EQ(vortoSucceeds({"state", path}).out,
            "gradient, class VRTGradient, XML dictionary\n"
            "colors\n"
            "  position  middle  interpolation  red  green                blue     code\n"
            "        -0     0.5         linear  0.1      0  0.3333333333333333  #1a0055\n"
            "         1    0.25         smooth  0.9    0.8                 0.1  #e6cc1a\n"
            "opacities\n"
            "  position  middle  interpolation  alpha\n"
            "         0     0.5         smooth   0.75\n");
  writeFile(path, levelsPlist());
  const std::string levels = vortoSucceeds({"state", path}).out;
  EXPECT_NE(levels.find("  Green        0.05       0.9    1.2          0          1\n"), std::string::npos) << levels;
  EXPECT_NE(levels.find("selected channel  Green\n"), std::string::npos) << levels;
  writeFile(path, opaquePlist());
  const std::string opaque = vortoSucceeds({"state", path}).out;
  EXPECT_NE(opaque.find("seed  42"), std::string::npos) << opaque;
}

TEST(State, OpaqueDataSurvivesEveryFormatAndForm) {
  const TemporaryFolder folder;
  const auto at = [&](const std::string& name) { return folder.path() + "/" + name; };
  writeFile(at("raw"), opaquePlist());
  vortoSucceeds({"state", at("raw"), "--convert", "binary", "--output", at("raw.binary")});
  vortoSucceeds({"state", at("raw.binary"), "--convert", "xml", "--form", "dictionary", "--output", at("data")});
  vortoSucceeds({"state", at("data"), "--convert", "binary", "--form", "archive", "--output", at("archive")});
  for (const char* name : {"raw", "raw.binary", "data", "archive"}) {
    const std::string json = vortoSucceeds({"state", at(name), "--json"}).out;
    EXPECT_TRUE(isJson(json)) << json;
    EXPECT_NE(json.find("\"seed\": 42"), std::string::npos) << name << json;
  }
}

TEST(State, JsonTellsEverything) {
  const TemporaryFolder folder;
  const std::string path = folder.path() + "/state.plist";
  writeFile(path, gradientPlist());
  const std::string json = vortoSucceeds({"state", path, "--json"}).out;
  EXPECT_TRUE(isJson(json)) << json;
  for (const char* part : {"\"kind\": \"gradient\"", "\"class\": \"VRTGradient\"", "\"form\": \"dictionary\"",
                           "\"format\": \"xml\"", "\"rgbSamples\": [", "-0,", "0.3333333333333333"}) {
    EXPECT_NE(json.find(part), std::string::npos) << part;
  }
}

TEST(Effects, AreListedByKindWithPortsAndRanges) {
  const std::string list = vortoSucceeds({"effects"}).out;
  for (const char* part :
       {"Filters", "Transitions", "Generators", "Blend modes", "\n  Gradient Map\n", "\n  Duotone\n", "inputGradient",
        "gradient", "levels", "1 to 4096; default 8", "8-bit, 16-bit, Float", "from --input 2", "from --time"}) {
    EXPECT_NE(list.find(part), std::string::npos) << part << "\n" << list;
  }
  const std::string json = vortoSucceeds({"effects", "--json"}).out;
  EXPECT_TRUE(isJson(json)) << json;
  for (const char* part : {"\"filter\": [", "\"blendMode\": [", "\"minimum\": 1,", "\"menu\": [",
                           "\"inputImageAPort\": \"inputImageA\""}) {
    EXPECT_NE(json.find(part), std::string::npos) << part << "\n" << json;
  }
}

TEST(Help, GoesToStandardOutput) {
  EXPECT_NE(vortoSucceeds({"--help"}).out.find("render"), std::string::npos);
  EXPECT_NE(vortoSucceeds({"render", "--help"}).out.find("--state"), std::string::npos);
  EXPECT_TRUE(vortoSucceeds({"--version"}).out.starts_with("vorto "));
}
