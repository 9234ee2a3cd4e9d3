// Tests the code page of the program's text.
#include "engine/windows_1252.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace tintora {
namespace {

TEST(Windows1252, IsLatin1OutsideTheMiddle) {
  for (int byte = 0; byte < 256; ++byte) {
    if (byte >= 0x80 && byte < 0xA0) continue;
    EXPECT_EQ(toCodePoint(static_cast<char>(byte)), static_cast<char16_t>(byte));
    EXPECT_EQ(fromCodePoint(static_cast<char16_t>(byte)), static_cast<char>(byte));
  }
}

TEST(Windows1252, HasTypographersCharactersInTheMiddle) {
  const std::string bytes =
      "\x80\x82\x83\x84\x85\x86\x87\x88\x89\x8A\x8B\x8C\x8E"
      "\x91\x92\x93\x94\x95\x96\x97\x98\x99\x9A\x9B\x9C\x9E\x9F";
  const std::u16string characters = u"€‚ƒ„…†‡ˆ‰Š‹ŒŽ‘’“”•–—˜™š›œžŸ";
  ASSERT_EQ(bytes.size(), characters.size());
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(toCodePoint(bytes[i]), characters[i]);
    EXPECT_EQ(fromCodePoint(characters[i]), bytes[i]);
  }
}

TEST(Windows1252, KeepsTheNumbersOfUnassignedBytes) {
  for (const char byte : {'\x81', '\x8D', '\x8F', '\x90', '\x9D'}) {
    const auto number = static_cast<unsigned char>(byte);
    EXPECT_EQ(toCodePoint(byte), char16_t{number});
    EXPECT_EQ(fromCodePoint(char16_t{number}), byte);
  }
}

TEST(Windows1252, HasNoOtherCharacters) {
  for (const char16_t codePoint : {u'\u0080', u'\u0099', u'\u0100', u'Ж', u'日', u'\uFFFF'}) {
    EXPECT_EQ(fromCodePoint(codePoint), std::nullopt) << static_cast<unsigned>(codePoint);
  }
}

}  // namespace
}  // namespace tintora
