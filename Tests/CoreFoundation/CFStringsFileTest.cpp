// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/CFStringsFile.h"

#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/Tables.h"

namespace {

CFUnits Units(std::u16string_view text) {
  return CFUnits(text.begin(), text.end());
}

TEST(CFStringsFileTest, ReadsEntriesCommentsAndEscapes) {
  const auto table = CFParseStrings(Units(uR"(/* a "comment"; */
// another /* one
"a"="1";"b" /**/ = // here too
"2" ;
"quote \" back \\ apostrophe \' " = "new\nline\ttab\r\U00e4\u20AC";
"two
lines" = "/* no comment */";
"a" = "last";
"" = "";)"),
                                    nullptr);
  ASSERT_TRUE(table);
  EXPECT_EQ(table->size(), 5u);
  EXPECT_EQ(table->at(Units(u"a")), Units(u"last"));
  EXPECT_EQ(table->at(Units(u"b")), Units(u"2"));
  EXPECT_EQ(table->at(Units(u"quote \" back \\ apostrophe ' ")), Units(u"new\nline\ttab\r\u00e4\u20ac"));
  EXPECT_EQ(table->at(Units(u"two\nlines")), Units(u"/* no comment */"));
  EXPECT_EQ(table->at(Units(u"")), Units(u""));
  EXPECT_TRUE(CFParseStrings({}, nullptr));
}

TEST(CFStringsFileTest, RefusesMalformedTextWithItsPlace) {
  for (const Row& row : rowsOf("Malformed.txt")) {
    std::string reason;
    EXPECT_FALSE(CFParseStrings(CFUnits(row[1].begin(), row[1].end()), &reason)) << row[0];
    EXPECT_EQ(reason, row[0]);
  }
}

TEST(CFStringsFileTest, ReadsTheEncodingsByTheirMarks) {
  const TemporaryFolder folder;
  const std::string path = folder.path() + "/Localizable.strings";
  for (const Row& row : rowsOf("Marks.txt")) {
    const bool valid = row[0] == "yes";
    std::ofstream(path, std::ios::binary) << row[1];
    std::string reason;
    const auto table = CFReadStringsFile(path, &reason);
    ASSERT_EQ(table.has_value(), valid) << reason;
    EXPECT_EQ(reason.empty(), valid);
    if (valid) {
      EXPECT_EQ(table->at(Units(u"k")), Units(u"\u00e4"));
    }
  }
  std::string reason;
  EXPECT_FALSE(CFReadStringsFile(folder.path() + "/none", &reason));
  EXPECT_NE(reason, "");
}

// Whatever the text, there is a table or a reason, and nothing outside the text is read (the sanitizers watch).
TEST(CFStringsFileTest, SurvivesEveryDamageOfTwoUnits) {
  const CFUnits valid = Units(u"/* c */ \"a\\n\" = \"\\U0041\"; // d\n\"b\" = \"c\";");
  const CFUnits pieces = Units(u"\"\\/*=;Uu0\n\xD800 ");
  int accepted = 0, refused = 0;
  for (std::size_t end = 0; end <= valid.size(); ++end) {
    for (std::size_t at = 0; at < valid.size() * pieces.size(); ++at) {
      CFUnits text(valid.begin(), valid.begin() + static_cast<std::ptrdiff_t>(end));
      for (const std::size_t place : {at / pieces.size(), at * 7 % valid.size()}) {
        if (place < end) text[place] = pieces[at % pieces.size()];
      }
      text.shrink_to_fit();
      std::string reason;
      const bool parsed = CFParseStrings(text, &reason).has_value();
      ++(parsed ? accepted : refused);
      ASSERT_EQ(parsed, reason.empty());
    }
  }
  EXPECT_TRUE(accepted > 0 && refused > 0);
}

}  // namespace
