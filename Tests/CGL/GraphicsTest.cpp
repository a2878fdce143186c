// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CGL/CGL.h"
#include "Platform/CGL/GLEnumerants.h"
#include "Platform/CGL/GraphicsCards.h"
#include "Tests/Support/ChildProcess.h"

namespace {

// A folder of cards as the kernel shows them.
class Cards : public TemporaryFolder {
 public:
  void write(const std::string& file, const std::string& text) const {
    const auto place = std::filesystem::path(path()) / file;
    std::filesystem::create_directories(place.parent_path());
    std::ofstream(place) << text << "\n";
  }
};

TEST(GraphicsCards, CountConnectorsThatShowAPictureAndTheMemoryOfTheFirstThatHasAny) {
  const Cards cards;
  EXPECT_EQ(cgl::activeDisplays(cards.path() + "/missing"), 0u);
  EXPECT_EQ(cgl::activeDisplays(cards.path()), 0u);
  EXPECT_EQ(cgl::dedicatedMemory(cards.path()), 0u);
  const char* const connectors[][3] = {{"card0-DP-1", "connected", "enabled"},
                                       {"card0-DP-2", "connected", "disabled"},
                                       {"card0-HDMI-A-1", "disconnected", "enabled"},
                                       {"card1-eDP-1", "connected", "enabled"}};
  for (const auto& [name, status, enabled] : connectors) {
    cards.write(std::string(name) + "/status", status);
    cards.write(std::string(name) + "/enabled", enabled);
  }
  cards.write("version", "drm");
  const char* const memories[] = {"what", "8573157376", "1024"};
  for (int i = 0; i < 3; ++i) cards.write("card" + std::to_string(i) + "/device/mem_info_vram_total", memories[i]);
  EXPECT_EQ(cgl::activeDisplays(cards.path()), 2u);
  EXPECT_EQ(cgl::dedicatedMemory(cards.path()), 8573157376u);
}

TEST(Graphics, DisplaysAreAtLeastOneAndNoMoreThanAskedFor) {
  std::uint32_t count = 0;
  CGDirectDisplayID displays[4] = {};
  EXPECT_EQ(CGGetActiveDisplayList(4, displays, &count), kCGLNoError);
  ASSERT_GE(count, 1u);
  ASSERT_LE(count, 4u);
  EXPECT_EQ(displays[0], CGMainDisplayID());
  EXPECT_NE(CGDisplayIDToOpenGLDisplayMask(displays[0]), 0u);
  EXPECT_EQ(CGDisplayIDToOpenGLDisplayMask(0), 0u);
  EXPECT_EQ(CGDisplayIDToOpenGLDisplayMask(33), 0u);
}

TEST(Graphics, RendererHasMemoryWithOrWithoutAContext) {
  CGLRendererInfoObj info = nullptr;
  std::int32_t count = 0;
  EXPECT_EQ(CGLQueryRendererInfo(0, &info, &count), kCGLBadValue);
  ASSERT_EQ(CGLQueryRendererInfo(1, &info, &count), kCGLNoError);
  EXPECT_EQ(count, 1);
  std::int32_t bytes = 0;
  EXPECT_EQ(CGLDescribeRenderer(info, 0, kCGLRPVideoMemory, &bytes), kCGLNoError);
  EXPECT_GE(bytes, 16 << 20);
  EXPECT_EQ(CGLDescribeRenderer(info, 1, kCGLRPVideoMemory, &bytes), kCGLBadRendererInfo);
  EXPECT_EQ(CGLDescribeRenderer(nullptr, 0, kCGLRPVideoMemory, &bytes), kCGLBadRendererInfo);
  CGLDestroyRendererInfo(info);
}

TEST(Graphics, WithoutAContextQuestionsChangeNothing) {
  EXPECT_EQ(CGLGetCurrentContext(), nullptr);
  EXPECT_EQ(CGLSetCurrentContext(nullptr), kCGLNoError);
  std::int32_t value = 77;
  CGLGetIntegerv(gl::MAX_TEXTURE_SIZE, &value);
  EXPECT_EQ(value, 77);
  EXPECT_EQ(CGLGetString(gl::RENDERER), nullptr);
  int notOne = 0;
  EXPECT_EQ(CGLSetCurrentContext(reinterpret_cast<CGLContextObj>(&notOne)), kCGLBadContext);
  EXPECT_EQ(CGLDestroyContext(nullptr), kCGLBadContext);
}

TEST(Graphics, ContextOfOurOwnAnswersAndGivesWay) {
  const CGLContextObj context = CGLCreateSurfacelessContext();
  if (!context) GTEST_SKIP() << "this machine offers no context without a window";
  ASSERT_EQ(CGLSetCurrentContext(context), kCGLNoError);
  EXPECT_EQ(CGLGetCurrentContext(), context);
  std::int32_t edge = 0;
  CGLGetIntegerv(gl::MAX_TEXTURE_SIZE, &edge);
  EXPECT_GE(edge, 1024);
  ASSERT_NE(CGLGetString(gl::RENDERER), nullptr);
  EXPECT_NE(std::string(CGLGetString(gl::RENDERER)), "");
  EXPECT_EQ(CGLSetCurrentContext(nullptr), kCGLNoError);
  EXPECT_EQ(CGLGetCurrentContext(), nullptr);
  EXPECT_EQ(CGLDestroyContext(context), kCGLNoError);
  EXPECT_EQ(CGLDestroyContext(context), kCGLBadContext);
}

}  // namespace
