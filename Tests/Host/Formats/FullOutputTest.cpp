// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Host/Formats/FormatModule.h"

namespace {

// Takes some writes, then none.
class FullOutput : public host::OutputBytes {
 public:
  explicit FullOutput(int writes) : writes_(writes) {}
  bool write(std::uint64_t, std::span<const std::uint8_t>) override { return writes_-- > 0; }
  std::size_t read(std::uint64_t, std::span<std::uint8_t>) override { return 0; }

 private:
  int writes_;
};

class BlackRows : public host::PixelRows {
 public:
  const std::byte* row(std::uint32_t) override { return row_.data(); }

 private:
  std::vector<std::byte> row_ = std::vector<std::byte>(64);
};

}  // namespace

TEST(FullOutput, IsTheReasonOfAFailureAtAnyWrite) {
  const struct {
    const char* module;
    host::FileFormat format;
    host::SampleType sample;
    host::Depth depth;
  } rows[] = {{"tiff", host::FileFormat::Tiff, host::SampleType::UInt8, host::Depth::Bits8},
              {"exr", host::FileFormat::Exr, host::SampleType::Float, host::Depth::Half}};
  for (const auto& row : rows) {
    host::WriteRequest request;
    request.format = row.format;
    request.width = request.height = 4;
    request.sample = row.sample;
    request.depth = row.depth;
    request.alpha = host::AlphaKind::Premultiplied;
    bool isWritten = false;
    int writes = 0;
    for (; !isWritten && writes < 20; ++writes) {
      BlackRows pixels;
      FullOutput output(writes);
      std::string reason;
      isWritten = moduleNamed(row.module).write(request, pixels, output, &reason);
      EXPECT_EQ(reason, isWritten ? "" : "it could not be written") << row.module << writes;
    }
    EXPECT_TRUE(isWritten && writes > 3) << row.module;
  }
}
