#include "palette/palette_readers.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/expected/csv_table.h"

namespace tintora {
namespace {

// "#rrggbb" or "#rrggbb name" of each colour.
std::vector<std::string> listed(const PaletteText& palette) {
  std::vector<std::string> texts;
  for (const PaletteColour& colour : palette.colours) {
    texts.push_back(hexText(colour.rgb) + (colour.name.empty() ? "" : " " + colour.name));
  }
  return texts;
}

std::vector<std::string> read(std::string_view text) {
  return listed(readPalette(text));
}

std::string refusal(std::string_view text) {
  try {
    readPalette(text);
  } catch (const PaletteError& error) {
    return error.what();
  }
  return "read";
}

using Texts = std::vector<std::string>;

TEST(Colours, AreReadInEveryNotation) {
  EXPECT_EQ(parseColour("#d55e00"), (Rgb8{213, 94, 0}));
  EXPECT_EQ(parseColour("#D55E00"), (Rgb8{213, 94, 0}));
  EXPECT_EQ(parseColour("#1aF"), (Rgb8{17, 170, 255}));
  EXPECT_EQ(parseColour("tomato"), (Rgb8{255, 99, 71}));
  EXPECT_EQ(parseColour("RebeccaPurple"), (Rgb8{102, 51, 153}));
  EXPECT_EQ(parseColour("aliceblue"), (Rgb8{240, 248, 255}));
  EXPECT_EQ(parseColour("yellowgreen"), (Rgb8{154, 205, 50}));
  EXPECT_EQ(parseColour("darkslategrey"), parseColour("DARKSLATEGRAY"));
}

// All names of CSS Color Module Level 4, with the colours that Chromium computes for them.
TEST(Colours, HaveTheNamesOfTheStandard) {
  const std::vector<CsvRow> rows = readCsv("css_named_colours.csv");
  ASSERT_EQ(rows.size(), 148U);
  for (const CsvRow& row : rows) {
    const auto channel = [&](std::size_t column) {
      return static_cast<std::uint8_t>(csvNumber(row, column));
    };
    EXPECT_EQ(parseColour(row[0]), (Rgb8{channel(1), channel(2), channel(3)})) << row[0];
  }
}

TEST(Colours, AreNotReadFromOtherTexts) {
  for (const std::string text :
       {"", "#", "#12", "#1234", "#12345", "#1234567", "#12345678", "#ggg", "# fff", "#ff f", "fff",
        "d55e00", "transparent", "currentcolor", "redd", "re", "red ", "#\xC3\xA9", "rgb(1,2,3)"}) {
    EXPECT_EQ(parseColour(text), std::nullopt) << text;
  }
}

TEST(GimpPalette, HasColoursWithNamesCommentsAndHeadings) {
  EXPECT_EQ(read("GIMP Palette\nName: Test\nColumns: 2\n# a comment\n\n"
                 "230 159   0\tOrange\n  0\t0\t0\n 86 180 233 Sky blue  \n"),
            (Texts{"#e69f00 Orange", "#000000", "#56b4e9 Sky blue"}));
}

TEST(GimpPalette, LinesMayEndInAnyWayAndTheFileInAnyPlace) {
  EXPECT_EQ(read("GIMP Palette\r\n#\r\n255 0 0 red\r\n0 0 255"), (Texts{"#ff0000 red", "#0000ff"}));
  EXPECT_EQ(read("GIMP Palette\r255 0 0 red\r0 0 255"), (Texts{"#ff0000 red", "#0000ff"}));
  EXPECT_EQ(read("\xEF\xBB\xBFGIMP Palette\n1 2 3\n"), (Texts{"#010203"}));
}

TEST(GimpPalette, AMalformedLineIsRefusedByItsNumber) {
  EXPECT_EQ(refusal("GIMP Palette\n0 0 0\n256 0 0 red\n"),
            "line 3: a colour begins with three numbers of 0 to 255");
  for (const std::string line :
       {"0 0", "-1 0 0", "1.5 0 0", "0x1 0 0", "red", "1 2 3name", "1,2,3"}) {
    EXPECT_EQ(refusal("GIMP Palette\n" + line),
              "line 2: a colour begins with three numbers of 0 to 255")
        << line;
  }
  EXPECT_EQ(refusal("GIMP Palette\nName: empty\n"), "it holds no colour");
  EXPECT_EQ(refusal("GIMP Palettes\n0 0 0\n"), "line 1: \"GIMP Palette\" is expected");
}

TEST(JsonPalette, HasTextsTriplesAndObjects) {
  EXPECT_EQ(read(R"(["#E69F00", "#09f", "tomato", [0, 158, 115],
                     {"name": "Vermilion", "hex": "#d55e00"}, {"color": [1, 2, 3]},
                     {"colour": "navy", "name": 7}, {"value": "#fff", "name": "Weiß"}])"),
            (Texts{"#e69f00", "#0099ff", "#ff6347", "#009e73", "#d55e00 Vermilion", "#010203",
                   "#000080", "#ffffff Weiß"}));
  EXPECT_EQ(read("[[0, 255, 254]]"), (Texts{"#00fffe"}));
  EXPECT_EQ(read("\n [\"red\"]\n"), (Texts{"#ff0000"}));
}

TEST(JsonPalette, AnEntryThatIsNoColourIsRefusedByItsPlace) {
  const std::string second = "entry 2 of the array: ";
  EXPECT_EQ(refusal(R"(["red", "#12"])"),
            second + "the text is neither #rgb, #rrggbb nor a CSS colour name");
  EXPECT_EQ(refusal(R"(["red", 5])"), second + "this is neither a colour nor an object with one");
  EXPECT_EQ(refusal(R"(["red", null])"),
            second + "this is neither a colour nor an object with one");
  EXPECT_EQ(refusal(R"(["red", [1, 2]])"),
            second + "this is neither a colour nor an object with one");
  EXPECT_EQ(refusal(R"(["red", {"hex": {"hex": "red"}}])"),
            second + "this is neither a colour nor an object with one");
  EXPECT_EQ(refusal(R"(["red", {"name": "x"}])"),
            second + "the object has no member hex, color, colour or value");
  for (const std::string triple :
       {"[1, 2, 256]", "[1, 2, -1]", "[1, 2, 0.5]", "[1, 2, \"3\"]", "[1, 2, 18446744073709551616]",
        "[1, 2, 18446744073709551615]"}) {
    EXPECT_EQ(refusal("[\"red\", " + triple + "]"),
              second + "a channel is no whole number of 0 to 255")
        << triple;
  }
  EXPECT_EQ(refusal("[]"), "it holds no colour");
  EXPECT_EQ(refusal("[\"red\",]"), "this is no valid JSON from byte 8 on");
  EXPECT_EQ(refusal("[1e999]"), "this is no valid JSON: a number in it is too large");
  EXPECT_EQ(refusal("['red']"), "this is no valid JSON from byte 2 on");
}

TEST(HexColours, AreFoundAnywhereInAText) {
  EXPECT_EQ(read("#E69F00\n#56B4E9\n"), (Texts{"#e69f00", "#56b4e9"}));
  EXPECT_EQ(read("orange=#E69F00, sky (#56B4E9) and '#fff'."),
            (Texts{"#e69f00", "#56b4e9", "#ffffff"}));
  EXPECT_EQ(read("[colours]\nwarm = #E69F00\n"), (Texts{"#e69f00"}));
  EXPECT_EQ(read("#f00 #FF0000 #f00f #ff0000ff"), (Texts{"#ff0000"}));
}

TEST(HexColours, TextThatOnlyLooksSimilarIsIgnored) {
  EXPECT_EQ(refusal("#12 #12345 #1234567 #ggg x#fff &#123; page.html#add /#bad ##"),
            "it holds no colour");
  EXPECT_EQ(read("#face-mask #fffé #abcG #defz #fff"), (Texts{"#ffffff"}));
}

TEST(StyleSheets, GiveTheColoursOfTheirDeclarationsNamedByVariables) {
  EXPECT_EQ(read("/* #111111 */ #add, #bad:hover { color: #222; --warm-2 : #E69F00 }\n"
                 "@media print { #fade { background: linear-gradient(#333, #444) } }\n"
                 "$sky: #56b4e9;\n@less: #009e73;\n:root{--again:#222}"),
            (Texts{"#222222 --again", "#e69f00 --warm-2", "#333333", "#444444", "#56b4e9 $sky",
                   "#009e73 @less"}));
  EXPECT_EQ(refusal("#add { color: red } /* #fff"), "it holds no colour");
}

TEST(StyleSheets, TranslucentColoursAreLeftOutAndReported) {
  const PaletteText palette =
      readPalette("a { color: #123; box-shadow: 0 0 3px #00000040, #abc8 }");
  EXPECT_EQ(listed(palette), (Texts{"#112233"}));
  EXPECT_EQ(palette.leftOut, (Texts{"#00000040", "#abc8"}));
  EXPECT_EQ(refusal("#00000040"), "it holds no colour that is opaque");
}

TEST(Palettes, HoldEachColourOnceUnderItsFirstName) {
  EXPECT_EQ(read("GIMP Palette\n1 2 3\n1 2 3 one\n1 2 3 two\n4 5 6 one\n"),
            (Texts{"#010203 one", "#040506 one"}));
}

TEST(Palettes, AreOfALimitedSize) {
  const auto many = [](std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
      const Rgb8 rgb{static_cast<std::uint8_t>(i >> 8U), static_cast<std::uint8_t>(i), 7};
      text += hexText(rgb) + " " + hexText(rgb) + "\n";
    }
    return text;
  };
  EXPECT_EQ(readPalette(many(mostPaletteColours)).colours.size(), mostPaletteColours);
  EXPECT_EQ(refusal(many(mostPaletteColours + 1)), "it holds more than 1024 colours");
}

TEST(Palettes, OtherFilesAreRefused) {
  EXPECT_EQ(refusal(""), "it holds no colour");
  EXPECT_EQ(refusal("words"), "it holds no colour");
  EXPECT_EQ(refusal(std::string_view("#fff\0#000", 9)), "this is no text file");
}

}  // namespace
}  // namespace tintora
