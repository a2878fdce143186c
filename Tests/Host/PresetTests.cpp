// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Host/Program.h"
#include "Tests/Host/TestImages.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

// Presets on the command line: named instead of a state's file.

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

class PresetNames : public testing::Test {
 protected:
  PresetNames() {
    writeTiff(folder.path("in.1.tif"), variedImage(19, 7, 16));
    writeTiff(folder.path("in.2.tif"), variedImage(7, 19, 16));
    own = folder.write("data/vorto/presets/gradients/Mine/\xC3\x89t\xC3\xA9.txt", "/* mine */ navy, orange 40%, white");
    folder.write("data/vorto/presets/levels/Bad.levels", "gamma=9");
  }
  ProgramRun mapped(const std::string& state, const Words& more = {}) const {
    Words words{
        "render",  "Gradient Map",     "--input", folder.path("in.%d.tif"), "--output", folder.path("out.%d.tif"),
        "--state", "gradient=" + state};
    words.insert(words.end(), more.begin(), more.end());
    return vorto(words, data);
  }
  std::string pictures() const { return readFile(folder.path("out.1.tif")) + readFile(folder.path("out.2.tif")); }

  const TemporaryFolder folder;
  const RunOptions data{{"XDG_DATA_HOME=" + folder.path("data")}, 0};
  std::string own;
};

}  // namespace

TEST_F(PresetNames, StandForTheirFilesInEveryProcess) {
  ASSERT_EQ(mapped(own).exitCode, 0);
  const std::string wanted = pictures();
  for (const char* const jobs : {"1", "2"}) {
    ASSERT_EQ(mapped("preset:ete", {"--jobs", jobs}).exitCode, 0) << jobs;
    EXPECT_EQ(pictures(), wanted) << jobs;
  }
  ASSERT_EQ(mapped("preset:Sepia").exitCode, 0);
  EXPECT_NE(pictures(), wanted);
  const ProgramRun unknown = mapped("preset:Seppia");
  EXPECT_EQ(unknown.exitCode, 2);
  EXPECT_EQ(unknown.err,
            "vorto: inputGradient=preset:Seppia: there is no preset of gradients called \"Seppia\"; did "
            "you mean \"Sepia\"?\n");
  EXPECT_EQ(mapped("preset:Invert").exitCode, 2) << "of levels";

  // Tasks run elsewhere, and later: they are given the file.
  const std::string script =
      vortoSucceeds({"submit", "--dry-run", "--", "render", "Gradient Map", "-i", folder.path("in.%d.tif"), "-o",
                     folder.path("out.%d.tif"), "--state=gradient=preset:ete", "--set", "gradient=red, blue"},
                    data)
          .out;
  EXPECT_NE(script.find("--state='gradient=" + own + "'"), std::string::npos) << script;
  EXPECT_EQ(script.find("preset:"), std::string::npos) << script;
}

TEST_F(PresetNames, AreListedAndPrinted) {
  const ProgramRun listed = vorto({"state", "--presets"}, data);
  EXPECT_TRUE(listed.out.starts_with("gradients\n  \xC3\x89t\xC3\xA9 ")) << listed.out;
  EXPECT_NE(listed.out.find("\nlevels\n"), std::string::npos);
  EXPECT_NE(listed.err.find("Bad.levels: line 1, column 7: gammaRGB: expected a gamma of 0 to 5"), std::string::npos);
  const Json json = Json::parse(vortoSucceeds({"state", "--presets", "--json"}, data).out);
  EXPECT_EQ(json["presets"][0], Json({{"kind", "gradient"},
                                      {"name", "\xC3\x89t\xC3\xA9"},
                                      {"collection", "Mine"},
                                      {"origin", "user"},
                                      {"favorite", false},
                                      {"file", own}}));
  EXPECT_EQ(json["unreadable"].size(), 1u);
  for (const Json& each : json["presets"]) {
    if (each["origin"] == "shipped") vortoSucceeds({"state", each["file"].get<std::string>()});
  }
  EXPECT_EQ(vortoSucceeds({"state", "preset:ete", "--json"}, data).out, vortoSucceeds({"state", own, "--json"}).out);
  EXPECT_EQ(vorto({"state", "preset:bad"}, data).exitCode, 3);
  EXPECT_EQ(vorto({"state", "--presets", own}).exitCode, 2);
  EXPECT_EQ(vorto({"state"}).exitCode, 2);
  EXPECT_EQ(vorto({"state", "--presets", "--convert", "css", "--output", folder.path("x")}).exitCode, 2);

  // A file that happens to be called so.
  const std::string file = folder.path("preset:Sepia");
  writeFile(file, "gamma=3");
  EXPECT_TRUE(vortoSucceeds({"state", file}).out.starts_with("levels"));
  EXPECT_TRUE(vortoSucceeds({"state", "preset:Sepia"}).out.starts_with("gradient"));
}
