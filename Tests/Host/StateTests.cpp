// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSKeyedArchiver.h"
#include "Tests/Host/Program.h"
#include "Tests/Host/TestImages.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <regex>
#include <set>

using Json = nlohmann::json;

namespace {

Json parsed(const std::string& text) {
  Json json = Json::parse(text, nullptr, false);
  EXPECT_FALSE(json.is_discarded()) << text;
  return json;
}

std::string document(const std::string& name) {
  return VORTO_TEST_DOCUMENTS "/" + name + ".plist";
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
    text.replace(at, from.size(), to);
  return text;
}

struct Document {
  const char* name;
  const char* effect;
  const char* port;
  const char* className;
  const char* olderName;
};

class SavedDocument : public testing::TestWithParam<Document> {};

}  // namespace

// A state in either format and form, and an archive under the older class name, are the same state and render the same
// picture to the byte.
TEST_P(SavedDocument, SurvivesEveryFormatAndForm) {
  const Document& row = GetParam();
  const TemporaryFolder folder;
  const auto at = [&](const std::string& name) { return folder.path() + "/" + name; };
  writeFile(at("saved.plist"), readFile(document(row.name)));
  const auto convert = [&](const std::string& from, const std::string& to, const std::string& format,
                           const std::string& form) {
    vortoSucceeds({"state", at(from), "--convert", format, "--form", form, "--output", at(to)});
  };
  convert("saved.plist", "dictionary.xml", "xml", "dictionary");
  convert("saved.plist", "dictionary.binary", "binary", "dictionary");
  convert("dictionary.binary", "archive.xml", "xml", "archive");
  convert("saved.plist", "archive.binary", "binary", "archive");
  convert("archive.binary", "back.xml", "xml", "dictionary");
  writeFile(at("older.xml"), replaced(readFile(at("archive.xml")), row.className, row.olderName));
  convert("older.xml", "older.binary", "binary", "archive");
  EXPECT_NE(readFile(at("older.binary")).find(row.olderName), std::string::npos) << "the class is kept";
  EXPECT_EQ(readFile(at("older.binary")).find(row.className), std::string::npos);
  EXPECT_TRUE(readFile(at("archive.binary")).starts_with("bplist00"));

  std::set<std::string> texts;
  for (const char* state : {"saved.plist", "dictionary.xml", "dictionary.binary", "archive.xml", "archive.binary",
                            "back.xml", "older.xml", "older.binary"}) {
    texts.insert(parsed(vortoSucceeds({"state", at(state), "--json"}).out)["state"].dump());
  }
  EXPECT_EQ(texts.size(), 1u);

  writeTiff(at("in.tif"), variedImage(19, 7, 16));
  const auto rendered = [&](const std::string& state) {
    passThrough(at("in.tif"), at("out.tif"), state.empty() ? Words{} : Words{"--state", row.port + ("=" + at(state))},
                row.effect);
    return readFile(at("out.tif"));
  };
  const std::string picture = rendered("saved.plist");
  EXPECT_NE(picture, rendered("")) << "the state matters";
  for (const char* state : {"dictionary.binary", "archive.xml", "older.binary"}) EXPECT_EQ(rendered(state), picture);
}

INSTANTIATE_TEST_SUITE_P(Host, SavedDocument,
                         testing::Values(Document{"gradient", "Gradient Map", "gradient", "VRTGradient",
                                                  "TarnGradient"},
                                         Document{"levels", "Levels", "levels", "VRTHistogram", "TarnHistogram"}),
                         [](const auto& row) { return std::string(row.param.name); });

// Three ways by which a number may come as text, and states that leave everything to the port's kind.
TEST(State, TextsAndBareStatesAreReadAsTheyAreMeant) {
  const TemporaryFolder folder;
  const auto at = [&](const std::string& name) { return folder.path() + "/" + name; };
  const std::string saved = readFile(document("levels"));
  writeFile(at("text.plist"), std::regex_replace(saved, std::regex("(real|integer)>"), "string>"));
  vortoSucceeds({"state", document("levels"), "--convert", "xml", "--form", "archive", "--output", at("archive")});
  writeFile(at("texts"),
            std::regex_replace(readFile(at("archive")), std::regex("<real>([^<]*)</real>"), "<string>$1 x</string>"));
  const std::string wanted = parsed(vortoSucceeds({"state", document("levels"), "--json"}).out)["state"].dump();
  for (const char* each : {"text.plist", "texts"}) {
    EXPECT_EQ(parsed(vortoSucceeds({"state", at(each), "--json"}).out)["state"].dump(), wanted) << each;
  }
  const auto composition = [&](const std::string& name, const std::string& list) {
    const std::size_t start = list.find("<dict");
    writeFile(at(name + ".qtz"), replaced(readFile(VORTO_TEST_DOCUMENTS "/levels-composition.txt"), "STATE",
                                          list.substr(start, list.rfind("</plist>") - start)));
  };
  writeFile(at("bare.plist"), "<plist version=\"1.0\"><dict/></plist>");
  writeFile(at("channel.plist"), "<plist><dict><key>selectedChannel</key><integer>2</integer></dict></plist>");
  composition("Numbers", saved);
  composition("Texts", readFile(at("text.plist")));
  composition("Bare", readFile(at("bare.plist")));
  RunOptions options;
  options.environment = {"VORTO_PLUGIN_PATH=" + folder.path()};
  writeTiff(at("in.tif"), variedImage(19, 7, 16));
  const auto rendered = [&](const std::string& effect, const std::string& state) {
    Words words{"render", effect, "--input", at("in.tif"), "--output", at("out.tif")};
    if (!state.empty()) words.insert(words.end(), {"--state", "levels=" + at(state)});
    vortoSucceeds(words, options);
    return readFile(at("out.tif"));
  };
  EXPECT_EQ(rendered("Numbers", ""), rendered("Texts", ""));
  EXPECT_EQ(rendered("levels", "text.plist"), rendered("Texts", ""));
  EXPECT_EQ(rendered("Levels", "bare.plist"), rendered("Bare", ""));
  EXPECT_EQ(rendered("LEVELS", "channel.plist"), rendered("Bare", ""));
  EXPECT_NE(rendered("Levels", ""), rendered("Bare", "")) << "levels of zeros";
  vortoSucceeds({"render", "gradient map", "--input", at("in.tif"), "--output", at("out.tif"), "--state",
                 "gradient=" + at("bare.plist")});
  EXPECT_EQ(vorto({"state", at("bare.plist")}).exitCode, 3) << "of which kind";
}

// A gradient as its file, as text in a file and on the command line, and as JSON; levels value by value.
TEST(State, ComesAsTextToo) {
  const TemporaryFolder folder;
  const auto at = [&](const std::string& name) { return folder.path() + "/" + name; };
  writeTiff(at("in.tif"), variedImage(19, 7, 16));
  const auto rendered = [&](const std::string& effect, const Words& more) {
    passThrough(at("in.tif"), at("out.tif"), more, effect);
    return readFile(at("out.tif"));
  };
  vortoSucceeds({"state", document("gradient"), "--convert", "text", "--output", at("gradient.txt")});
  writeFile(at("gradient.json"), vortoSucceeds({"state", document("gradient"), "--json"}).out);
  const std::string text = readFile(at("gradient.txt"));
  EXPECT_EQ(text,
            "color(srgb 0.1 0 0.3333333333333333) -0%,\ncolor(srgb 0.9 0.8 0.1) smooth 100% middle 25%,\n"
            "opacity 75% smooth 0%\n");
  const std::string map = rendered("Gradient Map", {"--state", "gradient=" + document("gradient")});
  EXPECT_EQ(rendered("Gradient Map", {"--state", "gradient=" + at("gradient.txt")}), map);
  EXPECT_EQ(rendered("Gradient Map", {"--state", "gradient=" + at("gradient.json")}), map);
  EXPECT_EQ(rendered("Gradient Map", {"--set", "gradient=" + text}), map);

  vortoSucceeds({"state", document("levels"), "--convert", "text", "--output", at("levels.txt")});
  writeFile(at("levels.json"), vortoSucceeds({"state", document("levels"), "--json"}).out);
  const std::string levels = rendered("Levels", {"--state", "levels=" + document("levels")});
  EXPECT_EQ(rendered("Levels", {"--state", "levels=" + at("levels.txt")}), levels);
  EXPECT_EQ(rendered("Levels", {"--state", "levels=" + at("levels.json")}), levels);
  Words each;
  std::string list = readFile(at("levels.txt"));
  for (std::size_t begin = 0; begin < list.size();) {
    const std::size_t end = std::min(list.find(", ", begin), list.size() - 1);
    each.insert(each.end(), {"--set", "Input Levels." + list.substr(begin, end - begin)});
    begin = end + 2;
  }
  EXPECT_GE(each.size(), 6u);
  EXPECT_EQ(rendered("Levels", each), levels);
  each.insert(each.begin(),
              {"--set", "levels.gamma=5", "--set", "levels=gamma=2, red.gamma=3", "--set", "levels=gamma=1"});
  EXPECT_EQ(rendered("Levels", each), levels) << "a whole takes the place of what was there";
  each = {"--state", "levels=" + document("levels"), "--set", "levels.gamma=3", "--set", "levels.gammaRGB=2"};
  EXPECT_NE(rendered("Levels", each), levels);
  each.insert(each.end(), {"--set", "levels.green.whiteIn=10%"});
  const std::string steep = rendered("Levels", each);
  writeFile(at("steep.json"), std::regex_replace(std::regex_replace(readFile(at("levels.json")),
                                                                    std::regex("(gammaRGB\": )[^,]*"), "$012"),
                                                 std::regex("(whiteInGreen\": )[^,]*"), "$010.1"));
  EXPECT_EQ(rendered("Levels", {"--state", "levels=" + at("steep.json")}), steep) << "on top of a state";
}

// What other programs wrote is taken over with a remark, and is then a state like any other.
TEST(State, OfOtherProgramsIsRemarkedOn) {
  const TemporaryFolder folder;
  const auto at = [&](const std::string& name) { return folder.path() + "/" + name; };
  writeTiff(at("in.tif"), variedImage(19, 7, 16));
  const std::string waves = VORTO_TEST_DOCUMENTS "/waves.ggr";
  const ProgramRun converted = vorto({"state", waves, "--convert", "xml", "--output", at("waves.plist")});
  EXPECT_EQ(converted.exitCode, 0);
  EXPECT_NE(converted.err.find("waves.ggr: 8"), std::string::npos) << converted.err;
  const auto map = [&](const std::string& state) {
    const ProgramRun run = vorto(
        {"render", "Gradient Map", "--input", at("in.tif"), "--output", at("out.tif"), "--state", "gradient=" + state});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, state == waves ? converted.err : "");
    return readFile(at("out.tif"));
  };
  EXPECT_EQ(map(waves), map(at("waves.plist")));
  for (const char* format : {"css", "svg", "ggr"}) {
    const ProgramRun run = vorto({"state", document("gradient"), "--convert", format, "--output", at(format)});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    map(at(format));
  }
}

TEST(State, PrintsTables) {
  EXPECT_EQ(vortoSucceeds({"state", document("gradient")}).out,
            "gradient, class VRTGradient, XML dictionary\n"
            "colors\n"
            "  position  middle  interpolation  red  green                blue     code\n"
            "        -0     0.5         linear  0.1      0  0.3333333333333333  #1a0055\n"
            "         1    0.25         smooth  0.9    0.8                 0.1  #e6cc1a\n"
            "opacities\n"
            "  position  middle  interpolation  alpha\n"
            "         0     0.5         smooth   0.75\n");
  const std::string levels = vortoSucceeds({"state", document("levels")}).out;
  EXPECT_NE(levels.find("  Green        0.05       0.9    1.2          0          1\n"), std::string::npos) << levels;
  EXPECT_NE(levels.find("selected channel  Green\n"), std::string::npos) << levels;
  const std::string opaque = vortoSucceeds({"state", document("opaque")}).out;
  EXPECT_NE(opaque.find("seed  42"), std::string::npos) << opaque;
}

TEST(State, OpaqueDataSurvivesEveryFormatAndForm) {
  const TemporaryFolder folder;
  const auto at = [&](const std::string& name) { return folder.path() + "/" + name; };
  vortoSucceeds({"state", document("opaque"), "--convert", "binary", "--output", at("raw")});
  vortoSucceeds({"state", at("raw"), "--convert", "xml", "--form", "dictionary", "--output", at("data")});
  vortoSucceeds({"state", at("data"), "--convert", "binary", "--form", "archive", "--output", at("archive")});
  for (const std::string& file : {document("opaque"), at("raw"), at("data"), at("archive")}) {
    EXPECT_EQ(parsed(vortoSucceeds({"state", file, "--json"}).out)["state"]["value"], Json({{"seed", 42}})) << file;
  }
  writeFile(at("json"), vortoSucceeds({"state", document("opaque"), "--json"}).out);
  vortoSucceeds({"state", at("json"), "--convert", "xml", "--output", at("again")});
  EXPECT_EQ(readFile(at("again")), readFile(at("data")));
}

TEST(State, JsonTellsEverything) {
  const std::string out = vortoSucceeds({"state", document("gradient"), "--json"}).out;
  EXPECT_NE(out.find(" -0.0,"), std::string::npos) << "to be compared with 0 it is the same: " << out;
  const Json json = parsed(out);
  EXPECT_EQ(json["kind"], "gradient");
  EXPECT_EQ(json["class"], "VRTGradient");
  EXPECT_EQ(json["form"], "dictionary");
  EXPECT_EQ(json["format"], "xml");
  const auto colors = json["state"]["rgbSamples"].get<std::vector<double>>();
  EXPECT_EQ(colors, (std::vector<double>{0, 0.5, 1, 0.1, 0, 1 / 3.0, 1, 0.25, 2, 0.9, 0.8, 0.1}));
  EXPECT_EQ(json["state"]["alphaSamples"], Json({0, 0.5, 2, 0.75}));
}

TEST(Effects, AreListedByKindWithPortsAndRanges) {
  const std::string list = vortoSucceeds({"effects"}).out;
  for (const char* part : {"Filters", "Transitions", "Generators", "Blend modes", "\n  Gradient Map\n", "\n  Duotone\n",
                           "inputGradient", "gradient", "levels", "1 to 4096; default 8", "8-bit, 16-bit, Float",
                           "from --input 2", "from --time", "optional, from --set inputShapeImage=FILE"}) {
    EXPECT_NE(list.find(part), std::string::npos) << part << "\n" << list;
  }
  const Json json = parsed(vortoSucceeds({"effects", "--json"}).out);
  EXPECT_EQ(json.size(), 4u);
  EXPECT_EQ(json["filter"].size(), 12u);
  EXPECT_EQ(json["blendMode"].size(), 17u);
  for (const Json& transition : json["transition"]) {
    EXPECT_EQ(transition["roles"]["inputImageAPort"], "inputImageA") << transition["name"];
  }
  const auto cellSize = Json::parse(R"({"key": "inputCellSize", "name": "Cell Size", "kind": "index", "minimum": 1,
                                        "maximum": 4096, "default": 8})");
  const Json& generators = json["generator"];
  const auto checkerboard =
      std::find_if(generators.begin(), generators.end(), [](const Json& e) { return e["name"] == "Checkerboard"; });
  ASSERT_NE(checkerboard, generators.end());
  const Json& inputs = (*checkerboard)["inputs"];
  EXPECT_NE(std::find(inputs.begin(), inputs.end(), cellSize), inputs.end()) << inputs;
  EXPECT_TRUE(std::any_of(inputs.begin(), inputs.end(), [](const Json& port) {
    return port.contains("menu") && port["menu"] == Json({"8-bit", "16-bit", "Float"});
  })) << inputs;
}

TEST(Help, GoesToStandardOutput) {
  EXPECT_NE(vortoSucceeds({"--help"}).out.find("render"), std::string::npos);
  EXPECT_NE(vortoSucceeds({"render", "--help"}).out.find("--state"), std::string::npos);
  EXPECT_TRUE(vortoSucceeds({"--version"}).out.starts_with("vorto "));
}
