// Tests the format of the custom transform file and how its faults are reported.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>

#include "counted_transform.h"
#include "engine/custom_transforms.h"

namespace tintora {
namespace {

using namespace std::string_view_literals;

// The rows of a file with this first number line.
std::array<float, 4> firstRow(const std::string& line) {
  const CustomTransformFile file = parseCustomTransforms("name\n" + line + "\n0 1 0 0\n0 0 1 0\n");
  EXPECT_EQ(file.transforms.size(), 1U) << line;
  return file.transforms.empty() ? std::array<float, 4>{} : file.transforms.front().rows[0];
}

bool isRead(const std::string& line) {
  return !parseCustomTransforms("name\n" + line + "\n0 1 0 0\n0 0 1 0\n").transforms.empty();
}

TEST(CustomTransform, StartsAsTheIdentity) {
  const CustomTransform entry;
  constexpr Rows unchanged{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}};
  EXPECT_EQ(entry.rows, unchanged);
  EXPECT_FALSE(entry.adjustable);
  EXPECT_EQ(entry.name, "");
}

TEST(CustomFile, IsRecordsOfANameAndThreeRowsInOrder) {
  const CustomTransformFile file =
      parseCustomTransforms("first\n" + countedText + "$second\n.5 0 0 0\n0 -2 0 0\n0 0 1 1e-1\n");
  ASSERT_EQ(file.transforms.size(), 2U);
  expectCounted(file.transforms[0], "first");
  EXPECT_EQ(file.transforms[1].name, "second");
  EXPECT_TRUE(file.transforms[1].adjustable);
  constexpr Rows second{{{0.5F, 0, 0, 0}, {0, -2, 0, 0}, {0, 0, 1, 0.1F}}};
  EXPECT_EQ(file.transforms[1].rows, second);
  EXPECT_FALSE(file.malformed);
}

TEST(CustomFile, LinesEndAtALineFeedACarriageReturnOrANul) {
  for (const std::string_view end : {"\n"sv, "\r"sv, "\r\n"sv, "\0"sv}) {
    std::string text;
    for (const std::string_view line :
         {"one", "1 2 3 4", "5 6 7 8", "9 10 11 12", "two", "1 2 3 4", "5 6 7 8", "9 10 11 12"}) {
      text.append(line).append(end);
    }
    for (const bool ended : {true, false}) {
      SCOPED_TRACE(std::to_string(end.front()) + (ended ? " ended" : " at the end of the file"));
      const CustomTransformFile file =
          parseCustomTransforms(ended ? text : text.substr(0, text.size() - end.size()));
      ASSERT_EQ(file.transforms.size(), 2U);
      expectCounted(file.transforms[0], "one");
      expectCounted(file.transforms[1], "two");
      EXPECT_FALSE(file.malformed);
    }
  }
}

TEST(CustomFile, LineEndsMayBeMixed) {
  const CustomTransformFile file = parseCustomTransforms(
      "one\r\n1 2 3 4\r5 6 7 8\0"
      "9 10 11 12\n"sv);
  ASSERT_EQ(file.transforms.size(), 1U);
  expectCounted(file.transforms[0], "one");
}

TEST(CustomFile, TwoLineEndsThatAreNotOnePairMakeABlankLine) {
  for (const std::string_view ends : {"\n\n"sv, "\r\r"sv, "\n\r"sv, "\0\0"sv, "\r\0"sv}) {
    SCOPED_TRACE(std::to_string(ends[0]) + " " + std::to_string(ends[1]));
    const CustomTransformFile file =
        parseCustomTransforms(std::string("one").append(ends).append(countedText));
    EXPECT_TRUE(file.transforms.empty());
    ASSERT_TRUE(file.malformed);
    EXPECT_EQ(file.malformed->number, 2U);
  }
}

// The line feed pairs with the second carriage return; the first ends a line by itself.
TEST(CustomFile, ACarriageReturnBeforeAPairMakesABlankLine) {
  const CustomTransformFile file = parseCustomTransforms("one\r\r\n" + countedText);
  EXPECT_TRUE(file.transforms.empty());
  ASSERT_TRUE(file.malformed);
  EXPECT_EQ(file.malformed->number, 2U);
  const CustomTransformFile named = parseCustomTransforms("one\r\n" + countedText + "\r\r\n");
  EXPECT_EQ(named.transforms.size(), 1U);
}

TEST(CustomFile, TheByteThatEndsTextEndsTheFile) {
  const CustomTransformFile between =
      parseCustomTransforms("one\n" + countedText + "\x1A" + "two\n" + countedText);
  ASSERT_EQ(between.transforms.size(), 1U);
  expectCounted(between.transforms[0], "one");
  EXPECT_FALSE(between.malformed);
  const CustomTransformFile within =
      parseCustomTransforms("one\n" + countedText + "two\n1 2 3 4\n5 6 7 8\n9 10\x1A 11 12\n");
  ASSERT_EQ(within.transforms.size(), 1U);
  ASSERT_TRUE(within.malformed);
  EXPECT_EQ(within.malformed->number, 8U);
  EXPECT_TRUE(parseCustomTransforms("\x1Aone\n" + countedText).transforms.empty());
}

TEST(CustomFile, TheRestOfTheNameLineIsTheNameBlanksIncluded) {
  const auto nameOf = [](const std::string& line) {
    const CustomTransformFile file = parseCustomTransforms(line + "\n" + countedText);
    EXPECT_EQ(file.transforms.size(), 1U) << line;
    return file.transforms.empty() ? CustomTransform{"none", false, {}} : file.transforms.front();
  };
  EXPECT_EQ(nameOf("  two words\t ").name, "  two words\t ");
  EXPECT_EQ(nameOf("Vi\xE9not & 1 2 3 4").name, "Vi\xE9not & 1 2 3 4");
  EXPECT_FALSE(nameOf("cost $5").adjustable);
  EXPECT_EQ(nameOf("cost $5").name, "cost $5");
  EXPECT_FALSE(nameOf(" $x").adjustable);
  EXPECT_EQ(nameOf(" $x").name, " $x");
  EXPECT_TRUE(nameOf("$$x").adjustable);
  EXPECT_EQ(nameOf("$$x").name, "$x");
  EXPECT_TRUE(nameOf("$ x").adjustable);
  EXPECT_EQ(nameOf("$ x").name, " x");
}

TEST(CustomFile, ADollarSignMarksTheEntryAdjustableAndIsRemoved) {
  const CustomTransformFile file = parseCustomTransforms("$Deutan correction\n" + countedText);
  ASSERT_EQ(file.transforms.size(), 1U);
  EXPECT_EQ(file.transforms[0].name, "Deutan correction");
  EXPECT_TRUE(file.transforms[0].adjustable);
}

TEST(CustomFile, AnEmptyNameIsAName) {
  const CustomTransformFile file = parseCustomTransforms("\n" + countedText + "$\n" + countedText);
  ASSERT_EQ(file.transforms.size(), 2U);
  expectCounted(file.transforms[0], "");
  EXPECT_EQ(file.transforms[1].name, "");
  EXPECT_TRUE(file.transforms[1].adjustable);
}

TEST(CustomFile, FieldsStandBetweenAnyBlanksAndTabs) {
  constexpr std::array<float, 4> expected{0.5F, -1.25F, 3.0F, 0.0F};
  for (const char* line : {"0.5 -1.25 3 0", "0.5\t-1.25\t3\t0", "  0.5 \t -1.25\t\t3   0",
                           "0.5 -1.25 3 0 ", "\t 0.5 -1.25 3 0 \t "}) {
    SCOPED_TRACE(line);
    EXPECT_EQ(firstRow(line), expected);
  }
}

TEST(CustomFile, ATabAfterFourNumbersIsNoFifthField) {
  constexpr std::array<float, 4> expected{0.5F, -1.25F, 3.0F, 0.0F};
  EXPECT_EQ(firstRow("0.5 -1.25 3 0\t"), expected);
}

TEST(CustomFile, ALineOfThreeOrFiveNumbersEndsTheReading) {
  for (const char* line : {"1 2 3", "1 2 3 4 5", "1", "", "1 2 3 4 x", "1,2,3,4"}) {
    for (int row = 0; row < 3; ++row) {
      SCOPED_TRACE(std::string(line) + " in row " + std::to_string(row));
      std::string text = "kept\n" + countedText + "lost\n";
      for (int i = 0; i < 3; ++i) text.append(i == row ? line : "1 2 3 4").append("\n");
      text += "after\n" + countedText;
      const CustomTransformFile file = parseCustomTransforms(text);
      ASSERT_EQ(file.transforms.size(), 1U);
      expectCounted(file.transforms[0], "kept");
      ASSERT_TRUE(file.malformed);
      EXPECT_EQ(file.malformed->number, static_cast<std::size_t>(6 + row));
      EXPECT_FALSE(file.malformed->reason.empty());
    }
  }
}

TEST(CustomFile, AFieldIsReadAsItsLongestLeadingNumber) {
  constexpr std::array<float, 4> expected{0.5F, 0.5F, -2.0F, 300.0F};
  EXPECT_EQ(firstRow("0.5abc 0.5.5 -2- 3e2%"), expected);
  constexpr std::array<float, 4> others{5.0F, 0.5F, 1.0F, 0.25F};
  EXPECT_EQ(firstRow("+5 .5 1. 2.5e-1"), others);
  constexpr std::array<float, 4> cutExponents{0.5F, 1.0F, 2.0F, 3.0F};
  EXPECT_EQ(firstRow("0.5else 1e 2e+ 3ex"), cutExponents);
}

TEST(CustomFile, AFieldThatBeginsWithNoNumberEndsTheReading) {
  for (const char* field :
       {"a",   "abc0.5",   "x1",  "-",      "+",   ".",   "e5", "-a", "$1",   "\"1\"", "--1",
        "inf", "infinity", "nan", "nan(1)", "INF", "x10", "\v", "\f", "\v\f", "\vx"}) {
    for (int place = 0; place < 4; ++place) {
      SCOPED_TRACE(field);
      std::string line;
      for (int i = 0; i < 4; ++i) line.append(i == place ? field : "1").append(" ");
      EXPECT_FALSE(isRead(line));
    }
  }
}

TEST(CustomFile, AFieldMayBeginWithAVerticalTabOrAFormFeed) {
  constexpr std::array<float, 4> expected{0.5F, -1.25F, 3.0F, 0.0F};
  EXPECT_EQ(firstRow("\v0.5 \f-1.25 \v\f\v3 0\v"), expected);
}

TEST(CustomFile, AFieldMayBeHexadecimal) {
  constexpr std::array<float, 4> expected{16.0F, -3.0F, 0.5F, 171.0F};
  EXPECT_EQ(firstRow("0x10 -0X1.8p+1 0x.8 0xabg"), expected);
  constexpr std::array<float, 4> cut{0.0F, 0.0F, 1.0F, 2.0F};
  EXPECT_EQ(firstRow("0x 0xg 0x1p 0x2p+"), cut);
}

// With a sign, the words are numbers.
TEST(CustomFile, AFieldMayBeASignedInfinityOrNotANumber) {
  for (const char* text : {"-inf", "-INF", "-infinity", "-Infinitys"}) {
    const float value = firstRow(std::string(text) + " 0 0 0")[0];
    EXPECT_TRUE(std::isinf(value) && value < 0.0F) << text;
  }
  EXPECT_TRUE(std::isinf(firstRow("+inf 0 0 0")[0]));
  for (const char* number : {"+nan", "-nan", "-NaN"}) {
    EXPECT_TRUE(std::isnan(firstRow(std::string(number) + " 0 0 0")[0])) << number;
  }
}

TEST(CustomFile, ValuesAreNeitherCheckedNorClamped) {
  constexpr std::array<float, 4> expected{-1e30F, 12345.0F, 1e-30F, 3.4e38F};
  EXPECT_EQ(firstRow("-1e30 12345 1e-30 3.4e38"), expected);
  EXPECT_TRUE(std::isinf(firstRow("1e99 0 0 0")[0]));
}

TEST(CustomFile, ARecordWithoutItsThirdRowIsDroppedAndTheEarlierOnesStay) {
  for (const char* tail : {"last\n1 2 3 4\n5 6 7 8", "last\n1 2 3 4\n5 6 7 8\n"}) {
    SCOPED_TRACE(tail);
    const CustomTransformFile file =
        parseCustomTransforms("one\n" + countedText + "two\n" + countedText + tail);
    ASSERT_EQ(file.transforms.size(), 2U);
    expectCounted(file.transforms[0], "one");
    expectCounted(file.transforms[1], "two");
    ASSERT_TRUE(file.malformed);
    EXPECT_EQ(file.malformed->number, 12U);
  }
}

TEST(CustomFile, ARecordOfANameAloneIsDropped) {
  const CustomTransformFile file = parseCustomTransforms("one\n" + countedText + "two");
  ASSERT_EQ(file.transforms.size(), 1U);
  ASSERT_TRUE(file.malformed);
  EXPECT_EQ(file.malformed->number, 6U);
}

TEST(CustomFile, ABlankLineBetweenRecordsBecomesTheNextName) {
  const CustomTransformFile file =
      parseCustomTransforms("one\n" + countedText + "\ntwo\n" + countedText);
  ASSERT_EQ(file.transforms.size(), 1U);
  ASSERT_TRUE(file.malformed);
  EXPECT_EQ(file.malformed->number, 6U);
}

TEST(CustomFile, BlankLinesAtTheEndAreNotReported) {
  for (const std::string_view tail : {"\n"sv, "\n\n\n"sv, " \t\n"sv, "\r\n\r\n"sv, "\0\0"sv}) {
    const CustomTransformFile file =
        parseCustomTransforms(std::string("one\n" + countedText).append(tail));
    EXPECT_EQ(file.transforms.size(), 1U);
    EXPECT_FALSE(file.malformed);
  }
}

TEST(CustomFile, WithoutAnyCharacterHasNoEntries) {
  const CustomTransformFile file = parseCustomTransforms("");
  EXPECT_TRUE(file.transforms.empty());
  EXPECT_FALSE(file.malformed);
}

TEST(CustomFile, TheReportCountsEveryKindOfLineEndOnce) {
  const CustomTransformFile file = parseCustomTransforms(
      "one\r\n1 2 3 4\r5 6 7 8\0"
      "9 10 11 12\ntwo\r\n1 2 3 4\r\n5 6 seven 8\r\n9 10 11 12\r\n"sv);
  EXPECT_EQ(file.transforms.size(), 1U);
  ASSERT_TRUE(file.malformed);
  EXPECT_EQ(file.malformed->number, 7U);
  EXPECT_NE(file.malformed->reason.find("seven"), std::string::npos);
}

}  // namespace
}  // namespace tintora
