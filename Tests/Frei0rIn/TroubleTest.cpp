// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Frei0rIn/Foreign.h"
#include "Tests/Host/Program.h"

#include <csignal>
#include <thread>

namespace {

std::shared_ptr<QCPatch> troubleIn(VRTNodeManager& manager) {
  auto patch = manager.nodeInstanceWithName("frei0r Trouble");
  set(*patch, "inputImage", makeImage(layouts[0], 8, 8, Values{1, 2, 3, 255}));
  return patch;
}

std::string fileText(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

// A frame fails with the plug-in's file and the cause; the next one is rendered by a new process, and nothing is left.
TEST(ForeignTrouble, FailsTheFrameAndGoesOn) {
  const ForeignPlace place({"Trouble"});
  const auto manager = place.registry();
  const auto descriptors = openDescriptors();
  const std::pair<const char*, const char*> deeds[] = {
      {"crash", "Trouble.so was ended by signal 11 (Segmentation fault) while it rendered"},
      {"exit", "Trouble.so ended with exit code 3 while it rendered"},
      {"hang", "Trouble.so has not rendered the frame within 1 s"}};
  Capture out(STDOUT_FILENO);
  for (const auto& [deed, cause] : deeds) {
    SCOPED_TRACE(deed);
    const auto patch = troubleIn(*manager);
    EXPECT_TRUE(runAt(*patch, 0).image);
    setText(*patch, "inputDeed", deed);
    setenv("VORTO_FREI0R_TIMEOUT", "0.5", 1);
    const Outcome failed = runAt(*patch, 1);
    setenv("VORTO_FREI0R_TIMEOUT", "20", 1);
    EXPECT_FALSE(failed.succeeded || failed.image);
    EXPECT_NE(failed.reason.find(cause), std::string::npos) << failed.reason;
    EXPECT_NE(failed.reason.find(place.path("frei0r")), std::string::npos) << failed.reason;
    setText(*patch, "inputDeed", "");
    EXPECT_TRUE(runAt(*patch, 2).image);
    EXPECT_EQ(fileText("/proc/self/maps").find("Trouble.so"), std::string::npos) << "it runs elsewhere";
  }
  EXPECT_EQ(out.text(), "") << "what plug-ins print is not the host's";
  EXPECT_EQ(openDescriptors(), descriptors);
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "no process is left";
}

// A plug-in that was there when the effects were listed and is not any more; and one that was replaced by rubbish.
TEST(ForeignTrouble, SaysWhenAPlugInIsGone) {
  const ForeignPlace place({"Trouble"});
  const auto manager = place.registry();
  std::filesystem::remove(place.path("frei0r/Trouble.so"));
  const Outcome gone = runAt(*troubleIn(*manager), 0);
  EXPECT_NE(gone.reason.find("it cannot be loaded"), std::string::npos) << gone.reason;
}

// A helper that hangs ends with a host that is killed.
TEST(ForeignTrouble, EndsWithTheHost) {
  const ForeignPlace place({"Trouble"});
  const auto manager = place.registry();
  const pid_t host = fork();
  if (host == 0) {
    const auto patch = troubleIn(*manager);
    setText(*patch, "inputDeed", "hang");
    runAt(*patch, 0);
    _exit(0);
  }
  const auto within5Seconds = [](const auto& holds) {
    for (int i = 0; i < 500 && !holds(); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return holds();
  };
  const std::string children = "/proc/" + std::to_string(host) + "/task/" + std::to_string(host) + "/children";
  const auto helper = [&] { return std::atoi(fileText(children).c_str()); };
  // In its deed it has mapped the plug-in.
  ASSERT_TRUE(within5Seconds([&] {
    return helper() && fileText("/proc/" + std::to_string(helper()) + "/maps").find("Trouble.so") != std::string::npos;
  }));
  const std::string status = "/proc/" + std::to_string(helper()) + "/stat";
  kill(host, SIGKILL);
  waitpid(host, nullptr, 0);
  EXPECT_TRUE(within5Seconds([&] {
    const std::string text = fileText(status);
    return text.empty() || text.find(") Z ") != std::string::npos;
  }));
}

// By the host: the list, a result on standard output that nothing else is in, and the exit code of a frame that failed.
TEST(ForeignTrouble, IsTheEffectsAlone) {
  const ForeignPlace place({"Trouble", "Parameters", "Mixer2"});
  RunOptions options;
  options.environment = {"FREI0R_PATH=" + place.path("frei0r"), "VORTO_FREI0R_TIMEOUT=5"};
  const std::string list = vortoSucceeds({"effects"}, options).out;
  for (const char* const line : {"frei0r Trouble", "inputAmountOfIt", "0 to 1; default 0.25", "default 0.5,0.25,1,1",
                                 "default \"seven..\"", "Where it is", "from --input 2"}) {
    EXPECT_NE(list.find(line), std::string::npos) << line;
  }
  const std::string picture = place.path("in.png");
  vortoSucceeds({"render", "Solid Color", "--size", "9x5", "--output", picture});
  const ProgramRun streamed =
      vortoSucceeds({"render", "frei0r Trouble", "--input", picture, "--format", "png", "--output", "-"}, options);
  EXPECT_EQ(streamed.out.substr(1, 3), "PNG");
  EXPECT_EQ(streamed.out.find("no picture"), std::string::npos);
  vortoSucceeds({"render", "frei0r mixer2", "--input", picture, picture, "--output", place.path("mixed.png")}, options);
  const ProgramRun failed =
      vorto({"render", "frei0r Trouble", "--input", picture, "--set", "deed=crash", "--output", place.path("out.png")},
            options);
  EXPECT_NE(failed.exitCode, 0);
  EXPECT_NE(failed.err.find("frei0r Trouble"), std::string::npos) << failed.err;
  EXPECT_NE(failed.err.find("signal 11 (Segmentation fault)"), std::string::npos) << failed.err;
  EXPECT_FALSE(std::filesystem::exists(place.path("out.png")));
}

}  // namespace
