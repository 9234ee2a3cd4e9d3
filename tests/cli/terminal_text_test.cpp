#include <gtest/gtest.h>

#include <string>

#include "cli/progress_bar.h"
#include "cli/text.h"

namespace tintora::cli {
namespace {

TEST(Printable, ReplacesControlCharactersAndInvalidText) {
  EXPECT_EQ(printable("plain é 色 😀.png"), "plain é 色 😀.png");
  EXPECT_EQ(printable("a\x1b[31mb\tc\x7f"), "a?[31mb?c?");
  EXPECT_EQ(printable("two\nlines\r"), "two lines?");
  EXPECT_EQ(printable("\xc2\x9b"
                      "31m"),
            "?31m")
      << "the one-character escape of C1";
  EXPECT_EQ(printable("\xff\xfe x \xc3"), "?? x ?");
}

TEST(LeadingColumns, NeverCutsACharacter) {
  const std::string text = "aé色😀";
  EXPECT_EQ(leadingColumns(text, 0), "");
  EXPECT_EQ(leadingColumns(text, 1), "a");
  EXPECT_EQ(leadingColumns(text, 2), "aé");
  EXPECT_EQ(leadingColumns(text, 3), "aé") << "the next is two columns wide";
  EXPECT_EQ(leadingColumns(text, 4), "aé色");
  EXPECT_EQ(leadingColumns(text, 6), text);
  EXPECT_EQ(leadingColumns(text, 100), text);
}

TEST(ProgressLine, FitsTerminalsOfAnyWidth) {
  const std::string name(200, 'x');
  for (std::size_t columns = 0; columns <= 200; ++columns) {
    const std::string line = progressLine(7, 12, name, columns);
    EXPECT_LT(line.size(), std::max<std::size_t>(columns, 6)) << columns << ": " << line;
    EXPECT_NE(line.find("7/12"), std::string::npos);
  }
  EXPECT_EQ(progressLine(1, 2, "b.png", 80),
            '[' + std::string(15, '#') + std::string(15, '.') + "] 1/2 b.png");
}

TEST(ProgressLine, CutsAndCleansNames) {
  std::string name;
  for (int i = 0; i < 40; ++i) name += "é";
  std::string cut;
  for (int i = 0; i < 30; ++i) cut += "é";
  EXPECT_NE(progressLine(0, 1, name, 80).find("0/1 " + cut), std::string::npos);
  EXPECT_EQ(progressLine(0, 1, name, 80).find(cut + "é"), std::string::npos);
  EXPECT_NE(progressLine(0, 1, "\x1b]0;x\x07", 80).find("0/1 ?]0;x?"), std::string::npos);
}

}  // namespace
}  // namespace tintora::cli
