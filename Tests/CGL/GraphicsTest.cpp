// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CGL/CGL.h"
#include "Platform/CGL/GLEnumerants.h"
#include "Platform/CGL/GraphicsCards.h"

namespace {

namespace fs = std::filesystem;

class CardsFolder : public testing::Test {
 protected:
  CardsFolder() {
    std::string pattern = (fs::temp_directory_path() / "cards-XXXXXX").string();
    path_ = mkdtemp(pattern.data());
  }
  ~CardsFolder() override { fs::remove_all(path_); }

  void write(const fs::path& file, const std::string& text) {
    fs::create_directories((path_ / file).parent_path());
    std::ofstream(path_ / file) << text;
  }

  fs::path path_;
};

TEST_F(CardsFolder, CountsConnectorsThatShowAPicture) {
  EXPECT_EQ(cgl::activeDisplays(path_ / "missing"), 0u);
  EXPECT_EQ(cgl::activeDisplays(path_), 0u);
  write("card0-DP-1/status", "connected\n");
  write("card0-DP-1/enabled", "enabled\n");
  write("card0-DP-2/status", "connected\n");
  write("card0-DP-2/enabled", "disabled\n");
  write("card0-HDMI-A-1/status", "disconnected\n");
  write("card0-HDMI-A-1/enabled", "enabled\n");
  write("card1-eDP-1/status", "connected\n");
  write("card1-eDP-1/enabled", "enabled\n");
  write("version", "drm\n");
  EXPECT_EQ(cgl::activeDisplays(path_), 2u);
}

TEST_F(CardsFolder, ReadsTheMemoryOfTheFirstCardThatHasAny) {
  EXPECT_EQ(cgl::dedicatedMemory(path_), 0u);
  write("card0/device/mem_info_vram_total", "what\n");
  write("card1/device/mem_info_vram_total", "8573157376\n");
  write("card2/device/mem_info_vram_total", "1024\n");
  EXPECT_EQ(cgl::dedicatedMemory(path_), 8573157376u);
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
