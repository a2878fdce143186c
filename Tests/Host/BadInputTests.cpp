// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSKeyedArchiver.h"
#include "Tests/Host/Program.h"
#include "Tests/Host/TestImages.h"

#include <gtest/gtest.h>

#include <algorithm>

// Whatever is wrong: one line that names the thing and the reason, the exit code of that sort of failure, and every
// file as it was.

namespace {

namespace fs = std::filesystem;

constexpr const char* OldContent = "what was there before";

// A folder with good and bad files to point at.
class Workplace {
 public:
  Workplace() {
    writeTiff(at("good.tif"), variedImage(4, 3, 8));
    writeTiff(at("other.tif"), variedImage(5, 3, 8));
    writeTiff(at("f.1.tif"), variedImage(4, 3, 8));
    writeTiff(at("f.2.tif"), variedImage(4, 3, 8));
    writeTiff(at("f.4.tif"), variedImage(4, 3, 8));
    writeFile(at("text.png"), "this is no picture");
    writeFile(at("empty.png"), "");
    writeFile(at("out.png"), OldContent);
    writeFile(at("levels.plist"), plist("<dict><key>gammaRGB</key><real>1.5</real></dict>"));
    writeFile(at("gradient.plist"), plist("<dict><key>rgbSamples</key><array/></dict>"));
    writeFile(at("nan.plist"), plist("<dict><key>gammaRGB</key><real>nan</real></dict>"));
    writeFile(at("ragged.plist"), plist("<dict><key>rgbSamples</key><array><real>0</real></array></dict>"));
    writeFile(at("words.plist"), plist("<dict><key>gammaRGB</key><string>high</string></dict>"));
    writeFile(at("stranger.plist"), plist("<dict><key>volume</key><real>11</real></dict>"));
    writeFile(at("cut.plist"), "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>gam");
    writeFile(at("archive.plist"), plist("<dict><key>$archiver</key><string>NSKeyedArchiver</string></dict>"));
    fs::create_directory(at("folder.png"));
  }

  std::string at(const std::string& name) const { return folder_.path() + "/" + name; }
  const std::string& path() const { return folder_.path(); }

  // Every "@" in an argument stands for the folder.
  ProgramRun run(const std::vector<std::string>& arguments, const RunOptions& options = {}) const {
    std::vector<std::string> words;
    for (const std::string& argument : arguments) {
      words.push_back(argument);
      for (std::size_t mark; (mark = words.back().find('@')) != std::string::npos;)
        words.back().replace(mark, 1, path());
    }
    return vorto(words, options);
  }

  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(path())) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }

 private:
  static std::string plist(const std::string& content) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + content + "</plist>\n";
  }
  TemporaryFolder folder_;
};

void expectOneLine(const ProgramRun& run) {
  EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
  EXPECT_TRUE(run.err.starts_with("vorto: ")) << run.err;
}

enum { Usage = 2, Input = 3, Output = 4, Effect = 5 };

struct BadInput {
  const char* name;
  int exitCode;
  std::vector<std::string> arguments;
  std::vector<std::string> said;  // all of them
};

std::vector<std::string> render(const std::string& effect, std::vector<std::string> more,
                                const std::string& output = "@/out.png") {
  more.insert(more.begin(), {"render", effect});
  more.insert(more.end(), {"--output", output});
  return more;
}

std::vector<std::string> inspect(std::vector<std::string> more, const std::string& screenshot = "@/out.png") {
  more.insert(more.begin(), "inspect");
  more.insert(more.end(), {"--screenshot", screenshot});
  return more;
}

const std::vector<std::string> good{"--input", "@/good.tif"};

std::vector<std::string> withGood(std::vector<std::string> more) {
  more.insert(more.begin(), good.begin(), good.end());
  return more;
}

const BadInput badInputs[] = {
    {"NoCommand", Usage, {}, {"subcommand"}},
    {"UnknownOption", Usage, {"effects", "--jsn"}, {"--jsn"}},
    {"UnknownEffect", Usage, render("Levls", good), {"\"Levls\"", "did you mean \"Levels\"?"}},
    {"EffectInOtherCase", Usage, render("gradient map", good), {"did you mean \"Gradient Map\""}},
    {"EffectLikeNoOther", Usage, render("Zzzzzzzz", good), {"there is no effect", "vorto effects"}},
    {"NoOutput", Usage, {"render", "Levels", "--input", "@/good.tif"}, {"--output"}},
    {"TooFewInputs", Usage, render("Dissolve", good), {"transition", "two", "1 was given"}},
    {"TooManyInputs",
     Usage,
     render("Levels", {"--input", "@/good.tif", "@/other.tif"}),
     {"one --input", "2 were given"}},
    {"InputForGenerator", Usage, render("Checkerboard", good), {"no --input"}},
    {"UnknownPort", Usage, render("Levels", withGood({"--set", "gama=2"})), {"gama", "inputLevels"}},
    {"NoValue", Usage, render("Levels", withGood({"--set", "gamma"})), {"gamma", "port=value"}},
    {"OutOfRange", Usage, render("Gradient Ramp", {"--set", "inputStartX=1.5"}), {"inputStartX=1.5", "0 to 1"}},
    {"NotANumber", Usage, render("Gradient Ramp", {"--set", "inputStartX=nan"}), {"takes a number"}},
    {"Infinite", Usage, render("Gradient Ramp", {"--set", "inputStartX=inf"}), {"takes a number"}},
    {"NumberAndMore", Usage, render("Gradient Ramp", {"--set", "inputStartX=0.5x"}), {"takes a number"}},
    {"DecimalComma", Usage, render("Gradient Ramp", {"--set", "inputStartX=0,5"}), {"takes a number"}},
    {"IndexNotInMenu", Usage, render("Checkerboard", {"--set", "inputDepth=Double"}), {"8-bit, 16-bit or Float"}},
    {"IndexAboveMenu", Usage, render("Checkerboard", {"--set", "inputDepth=3"}), {"from 0 to 2"}},
    {"BrokenIndex", Usage, render("Checkerboard", {"--set", "inputCellSize=2.5"}), {"whole number (1 to 4096)"}},
    {"BadColor", Usage, render("Checkerboard", {"--set", "inputColorA=#12345"}), {"#rrggbb"}},
    {"ColorOutOfRange", Usage, render("Checkerboard", {"--set", "inputColorA=0,0,2"}), {"from 0 to 1"}},
    {"ValueForImage", Usage, render("Levels", withGood({"--set", "inputImage=1"})), {"--input"}},
    {"ValueForState", Usage, render("Levels", withGood({"--set", "inputLevels=1"})), {"levels", "--state"}},
    {"ValueForTime",
     Usage,
     render("Dissolve", {"--input", "@/good.tif", "@/good.tif", "--set", "inputTime=1"}),
     {"--time"}},
    {"TimeOutOfRange", Usage, render("Dissolve", {"--input", "@/good.tif", "@/good.tif", "--time", "1.5"}), {"0 to 1"}},
    {"TimeNotFinite", Usage, render("Dissolve", {"--input", "@/good.tif", "@/good.tif", "--time", "nan"}), {"--time"}},
    {"BadSize", Usage, render("Levels", withGood({"--size", "10"})), {"--size 10", "1920x1080"}},
    {"SizeOfNothing", Usage, render("Levels", withGood({"--size", "0x5"})), {"--size 0x5"}},
    {"SizeOutOfRange", Usage, render("Checkerboard", {"--size", "70000x10"}), {"1 to 65536"}},
    {"SizeBeyondMemory",
     Input,
     render("Levels", withGood({"--size", "65536x65536"})),
     {"65536 x 65536", "more than a bitmap"}},
    {"BadDepth", Usage, render("Levels", withGood({"--depth", "12"})), {"--depth 12", "half"}},
    {"BadPixelFormat",
     Usage,
     render("Levels", withGood({"--pixel-format", "rgb8"})),
     {"--pixel-format rgb8", "rgba8", "yuv422", "l16", "or rgbafloat"}},
    {"PixelFormatAndDepth",
     Usage,
     render("Levels", withGood({"--pixel-format", "rgb16", "--depth", "8"})),
     {"--depth"}},
    {"BadAlpha", Usage, render("Levels", withGood({"--alpha", "none"})), {"--alpha none", "opaque"}},
    {"BadRate", Usage, render("Levels", withGood({"--rate", "0"})), {"--rate"}},
    {"DifferentSizes", Input, render("Over", {"--input", "@/good.tif", "@/other.tif"}), {"4 x 3", "5 x 3", "--size"}},
    {"NoInputFile", Input, render("Levels", {"--input", "@/none.tif"}), {"none.tif"}},
    {"FolderAsInput", Input, render("Levels", {"--input", "@/folder.png"}), {"folder.png"}},
    {"NoPicture", Input, render("Levels", {"--input", "@/text.png"}), {"text.png", "not a PNG, JPEG, TIFF or EXR"}},
    {"EmptyPicture", Input, render("Levels", {"--input", "@/empty.png"}), {"empty.png"}},
    {"UnknownExtension", Usage, render("Levels", good, "@/out.bmp"), {"out.bmp", "png"}},
    {"NoExtension", Usage, render("Levels", good, "@/out"), {"no extension"}},
    {"NoOutputFolder", Output, render("Levels", good, "@/nowhere/out.png"), {"nowhere", "no folder"}},
    {"FolderAsOutput", Output, render("Levels", good, "@/folder.png"), {"it is a folder"}},
    {"WrongStateKind",
     Usage,
     render("Levels", withGood({"--state", "levels=@/gradient.plist"})),
     {"gradient", "levels"}},
    {"StateForNumber", Usage, render("Gradient Ramp", {"--state", "inputStartX=@/levels.plist"}), {"number"}},
    {"NoStateFile", Input, render("Levels", withGood({"--state", "levels=@/none.plist"})), {"none.plist"}},
    {"StateWithNaN", Input, render("Levels", withGood({"--state", "levels=@/nan.plist"})), {"gammaRGB", "finite"}},
    {"RaggedState", Input, render("Gradient Map", withGood({"--state", "gradient=@/ragged.plist"})), {"multiple of 6"}},
    {"SequenceWithoutNumber", Usage, render("Levels", {"--input", "@/f.%d.tif"}), {"out.%04d.png"}},
    {"NumberWithoutSequence", Usage, render("Levels", good, "@/out.%d.png"), {"--frames"}},
    {"MissingFrame", Input, render("Levels", {"--input", "@/f.%d.tif"}, "@/o.%d.png"), {"frame 3 is missing"}},
    {"NoFrames", Input, render("Levels", {"--input", "@/g.%d.tif"}, "@/o.%d.png"), {"no such frame"}},
    {"FramesBackward", Usage, render("Checkerboard", {"--frames", "5-1"}, "@/o.%d.png"), {"--frames 5-1"}},
    {"TwoNumbers", Usage, render("Checkerboard", {"--frames", "1-2"}, "@/o.%d.%d.png"), {"once"}},
    {"StateOfNothing", Input, {"state", "@/none.plist"}, {"none.plist"}},
    {"StateCutShort", Input, {"state", "@/cut.plist"}, {"cut.plist"}},
    {"StateOfStranger", Input, {"state", "@/stranger.plist"}, {"neither a gradient"}},
    {"StateOfWords", Input, {"state", "@/words.plist"}, {"gammaRGB", "string"}},
    {"ArchiveOfNothing", Input, {"state", "@/archive.plist"}, {"archive.plist"}},
    {"ConvertToWhat", Usage, {"state", "@/levels.plist", "--convert", "json", "--output", "@/out.png"}, {"json"}},
    {"ConvertToNowhere", Usage, {"state", "@/levels.plist", "--convert", "xml"}, {"--output"}},
    {"SheetWithNoPicture", Input, {"sheet", "@/good.tif", "@/text.png", "--output", "@/out.png"}, {"text.png"}},
    {"LabelsMissing",
     Usage,
     {"sheet", "@/good.tif", "@/other.tif", "--labels", "One", "--output", "@/out.png"},
     {"1 labels", "2 pictures"}},
    {"InspectUnknownEffect", Usage, inspect({"Levls", "--input", "@/good.tif"}), {"did you mean \"Levels\"?"}},
    {"InspectNoPicture", Input, inspect({"Levels", "--input", "@/text.png"}), {"text.png", "not a PNG"}},
    {"InspectTooFewInputs", Usage, inspect({"Dissolve", "--input", "@/good.tif"}), {"two", "1 was given"}},
    {"InspectOutOfRange",
     Usage,
     inspect({"Dissolve", "--input", "@/good.tif", "@/good.tif", "--time", "1.5"}),
     {"0 to 1"}},
    {"InspectBadRate", Usage, inspect({"Levels", "--input", "@/good.tif", "--rate", "0"}), {"--rate"}},
    {"InspectMissingFrame", Input, inspect({"Levels", "--input", "@/f.%d.tif"}), {"frame 3 is missing"}},
    {"InspectNothing", Usage, inspect({}), {"give an effect"}},
    {"InspectInputAlone", Usage, inspect({"--input", "@/good.tif"}), {"without an effect"}},
    {"InspectUnknownKind", Usage, inspect({"--state", "volume=@/levels.plist"}), {"volume", "gradient, levels"}},
    {"InspectNoKind", Usage, inspect({"--state", "@/levels.plist"}), {"--state gradient=FILE"}},
    {"InspectWrongKind", Usage, inspect({"--state", "gradient=@/levels.plist"}), {"levels.plist", "the kind levels"}},
    {"InspectNoState", Input, inspect({"--state", "gradient=@/none.plist"}), {"none.plist"}},
    {"InspectStateWithNaN", Input, inspect({"--state", "levels=@/nan.plist"}), {"nan.plist", "finite"}},
    {"InspectToNowhere", Output, inspect({"Checkerboard"}, "@/nowhere/out.png"), {"nowhere", "no folder"}},
    {"InspectToFolder", Output, inspect({"Checkerboard"}, "@/folder.png"), {"it is a folder"}},
    {"InspectToBmp", Usage, inspect({"Checkerboard"}, "@/out.bmp"), {"out.bmp"}},
    {"InspectBadScale", Usage, inspect({"Checkerboard", "--scale", "0"}), {"--scale"}},
    {"InspectScaleOfNaN", Usage, inspect({"Checkerboard", "--scale", "nan"}), {"--scale", "nan"}},
    {"InspectBadAppearance", Usage, inspect({"Checkerboard", "--appearance", "pink"}), {"pink"}},
    {"InspectWithoutDisplay", Usage, {"inspect", "Checkerboard"}, {"no display", "--screenshot"}},
};

class BadInputTest : public testing::TestWithParam<BadInput> {};

}  // namespace

TEST_P(BadInputTest, IsToldInOneLineAndChangesNothing) {
  const Workplace workplace;
  const auto before = workplace.files();
  const ProgramRun run = workplace.run(GetParam().arguments);
  EXPECT_EQ(run.exitCode, GetParam().exitCode) << run.err;
  EXPECT_EQ(run.out, "");
  expectOneLine(run);
  for (const std::string& part : GetParam().said)
    EXPECT_NE(run.err.find(part), std::string::npos) << part << "\n" << run.err;
  EXPECT_EQ(workplace.files(), before);
  EXPECT_EQ(readFile(workplace.at("out.png")), OldContent);
}

INSTANTIATE_TEST_SUITE_P(Host, BadInputTest, testing::ValuesIn(badInputs),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(HalfWritten, PicturesAreRefused) {
  const Workplace workplace;
  for (const std::string extension : {"png", "jpg", "tif", "exr"}) {
    const std::string whole = workplace.at("whole." + extension);
    passThrough(VORTO_PHOTOS "/coffee.png", whole);
    const std::string bytes = readFile(whole);
    const std::string half = workplace.at("half." + extension);
    for (const double part : {0.0005, 0.1, 0.5, 0.97}) {
      writeFile(half, bytes.substr(0, static_cast<std::size_t>(part * static_cast<double>(bytes.size()))));
      const ProgramRun run = workplace.run(render("Levels", {"--input", half}));
      EXPECT_EQ(run.exitCode, Input) << extension << ' ' << part;
      expectOneLine(run);
      EXPECT_NE(run.err.find(half), std::string::npos) << run.err;
    }
  }
  EXPECT_EQ(readFile(workplace.at("out.png")), OldContent);
}

TEST(Damaged, PicturesNeverCrash) {
  const Workplace workplace;
  for (const std::string extension : {"png", "jpg", "tif", "exr"}) {
    const std::string path = workplace.at("damaged." + extension);
    passThrough(VORTO_PHOTOS "/coffee.png", path, {"--size", "40x30"});
    const std::string whole = readFile(path);
    for (std::size_t step = 1; step <= 6; ++step) {
      std::string bytes = whole;
      for (std::size_t i = 8 + step; i < bytes.size(); i += 31 * step) bytes[i] = static_cast<char>(bytes[i] ^ 0x5A);
      writeFile(path, bytes);
      const ProgramRun run = workplace.run(render("Levels", {"--input", path}, "@/damaged-out.png"));
      EXPECT_TRUE(run.exitCode == 0 || run.exitCode == Input) << run.exitCode << ' ' << run.err;
    }
  }
}

TEST(FullDisk, LeavesTheOldFile) {
  const Workplace workplace;
  const auto before = workplace.files();
  RunOptions full;
  full.fileSizeLimit = 4096;
  for (const std::string name : {"out.png", "out.jpg", "out.tif", "out.exr"}) {
    writeFile(workplace.at(name), OldContent);
    const ProgramRun run =
        workplace.run({"render", "Levels", "--input", VORTO_PHOTOS "/coffee.png", "--output", "@/" + name}, full);
    EXPECT_EQ(run.exitCode, Output);
    expectOneLine(run);
    EXPECT_NE(run.err.find(name), std::string::npos) << run.err;
    EXPECT_EQ(readFile(workplace.at(name)), OldContent);
    if (name != "out.png") fs::remove(workplace.at(name));
  }
  EXPECT_EQ(workplace.files(), before);
  full.fileSizeLimit = 16;
  const ProgramRun list = workplace.run({"effects"}, full);
  EXPECT_EQ(list.exitCode, Output) << "standard output counts too";
}

TEST(Permissions, ReadOnlyFoldersAndFilesStay) {
  if (geteuid() == 0) GTEST_SKIP() << "nothing is read-only for root";
  const Workplace workplace;
  chmod(workplace.at("out.png").c_str(), 0444);
  EXPECT_EQ(workplace.run(render("Levels", good)).exitCode, Output);
  chmod(workplace.at("out.png").c_str(), 0644);
  chmod(workplace.path().c_str(), 0555);
  const ProgramRun run = workplace.run(render("Levels", good));
  chmod(workplace.path().c_str(), 0755);
  EXPECT_EQ(run.exitCode, Output);
  expectOneLine(run);
  EXPECT_EQ(readFile(workplace.at("out.png")), OldContent);
}

TEST(PlugIns, BrokenOnesAreOnlyWarnedOf) {
  const Workplace workplace;
  fs::create_directories(workplace.at("plugins/Broken.plugin/Contents"));
  writeFile(workplace.at("plugins/Bad.qtz"), "no composition");
  RunOptions options;
  options.environment = {"VORTO_PLUGIN_PATH=" + workplace.at("nowhere") + "::" + workplace.at("plugins")};
  const ProgramRun run = workplace.run({"effects"}, options);
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_NE(run.err.find("Broken.plugin"), std::string::npos) << run.err;
  EXPECT_NE(run.err.find("Bad.qtz"), std::string::npos) << run.err;
  EXPECT_NE(run.out.find("Gradient Map"), std::string::npos);
}
