#include "jet/format/TextCodec.h"
#include "tests/jet/format/FormatTestSupport.h"

namespace jet::format::test {
namespace {

std::string Decoded(std::string_view hex) {
  std::string text = "left over";
  DecodeText(FromHex(hex), text);
  return text;
}

std::string Encoded(std::string_view text, bool compress = true) {
  return ToHex(EncodeText(text, compress));
}

TEST(TextCodec, ReadsPlainAndCompressedText) {
  EXPECT_EQ(Decoded("fffe666f6f32"), "foo2");
  EXPECT_EQ(Decoded("31 00"), "1");
  EXPECT_EQ(Decoded(""), "");
  EXPECT_EQ(Decoded("fffe"), "");
  EXPECT_EQ(Decoded("fffe e4"), "ä");
  EXPECT_EQ(Decoded("fffe 61 00 ac20 ac20 00 62"), "a€€b");  // bytes, words, bytes
  EXPECT_EQ(Decoded("fffe 00 ac20"), "€");
  EXPECT_EQ(Decoded("3dd8 c8df"), "\xF0\x9F\x9F\x88");
}

TEST(TextCodec, LoneSurrogates_ReadAsTheReplacementCharacter) {
  EXPECT_EQ(Decoded("3dd8"), "\uFFFD");
  EXPECT_EQ(Decoded("3dd8 6100"), "\uFFFDa");
  EXPECT_EQ(Decoded("c8df 3dd8 3dd8 c8df"), "\uFFFD\uFFFD\xF0\x9F\x9F\x88");
  std::string kept;
  DecodeText(FromHex("c8df 3dd8 3dd8 c8df"), kept, LoneSurrogates::Keep);
  EXPECT_EQ(kept, "\xED\xBF\x88\xED\xA0\xBD\xF0\x9F\x9F\x88") << "as keys need them";
}

TEST(TextCodec, BytesThatAreNoText_AreDamage) {
  EXPECT_EQ(ErrorOf([] { Decoded("61"); }), kDamaged);
  EXPECT_EQ(ErrorOf([] { Decoded("610062"); }), kDamaged);
  EXPECT_EQ(ErrorOf([] { Decoded("fffe 00 ac"); }), kDamaged);
}

TEST(TextCodec, CompressesOnlyWhatGetsShorter) {
  EXPECT_EQ(Encoded("ab"), "61006200");
  EXPECT_EQ(Encoded("abc"), "fffe616263");
  EXPECT_EQ(Encoded("abc", false), "610062006300");
  EXPECT_EQ(Encoded("abcdef€"), "fffe61626364656600ac20");
  EXPECT_EQ(Encoded("abcdef\u0100"),
            ToHex(EncodeText("abcdef\u0100", false)));  // low byte zero cannot be said
}

TEST(TextCodec, TextThatBeginsLikeCompressed_IsCompressed) {
  for (const bool compress : {false, true})
    EXPECT_EQ(Decoded(Encoded("\uFEFFx", compress)), "\uFEFFx");
  EXPECT_EQ(ErrorOf([] { EncodeText("\uFEFF\u0100", false); }), 3421);
}

TEST(TextCodec, BytesThatAreNoUtf8_AreRefused) {
  for (const char* text :
       {"\x80", "a\xC3", "\xC0\xAF", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xFF", "\xC3("}) {
    EXPECT_EQ(ErrorOf([&] { EncodeText(text, true); }), 3421) << text;
  }
}

TEST(TextCodec, RandomTexts_ComeBackFromBothForms) {
  Random random;
  for (int round = 0; round < 3000; ++round) {
    std::u16string units;
    const std::uint32_t length = random.Below(40);
    while (units.size() < length) {
      switch (random.Below(4)) {
        case 0:
          units.push_back(static_cast<char16_t>(random.Below(0xD800)));
          break;
        case 1:
          units += {static_cast<char16_t>(0xD800 + random.Below(0x400)),
                    static_cast<char16_t>(0xDC00 + random.Below(0x400))};
          break;
        default:
          units.push_back(static_cast<char16_t>(1 + random.Below(0x100)));
          break;
      }
    }
    const std::string text = Utf16ToUtf8(units);
    ASSERT_EQ(Utf8ToUtf16(text), units);
    ASSERT_EQ(Utf16Length(text), units.size());
    for (const bool compress : {false, true}) {
      const Bytes stored = EncodeText(text, compress);
      std::string back;
      DecodeText(stored, back);
      ASSERT_EQ(back, text) << ToHex(stored);
      ASSERT_LE(stored.size(), 2 * units.size() + (units.empty() ? 0 : 3));
    }
  }
}

TEST(TextCodec, RandomBytes_GiveValidTextOrDamage) {
  Random random;
  for (int round = 0; round < 3000; ++round) {
    Bytes stored = round % 2 == 0 ? FromHex("fffe") : Bytes{};
    for (std::uint32_t left = random.Below(30); left > 0; --left) {
      stored.push_back(static_cast<std::byte>(random.Below(3) == 0 ? 0 : random.Below(256)));
    }
    std::string text;
    const int error = ErrorOf([&] { DecodeText(stored, text); });
    if (error != 0) {
      ASSERT_EQ(error, kDamaged);
    } else {
      ASSERT_EQ(ErrorOf([&] { Utf8ToUtf16(text); }), 0) << ToHex(stored);
    }
  }
}

}  // namespace
}  // namespace jet::format::test
