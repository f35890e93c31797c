// Character references.

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include <qo_page/decode.h>

namespace {

using qo::DecodeMode;

struct Case {
  const char* source;
  const char* text;
  const char* value;  // as the value of an attribute
};

TEST(Decode, ReplacesReferences) {
  const Case cases[] = {
      // What is no reference stays.
      {"", "", ""},
      {"plain \xFF\xC3 text", "plain \xFF\xC3 text", "plain \xFF\xC3 text"},
      {"& && &; &1; & amp; &", "& && &; &1; & amp; &", "& && &; &1; & amp; &"},
      {"&bogus; &Amp; &hearts", "&bogus; &Amp; &hearts", "&bogus; &Amp; &hearts"},
      {"&#; &#x; &#xg; &#a; &#", "&#; &#x; &#xg; &#a; &#", "&#; &#x; &#xg; &#a; &#"},
      // Names; case counts.
      {"&lt;&gt;&LT&GT", "<><>", "<><>"},
      {"&Eacute;&eacute;", "\u00C9\u00E9", "\u00C9\u00E9"},
      {"a&nbsp;b&hearts;c", "a\u00A0b\u2665c", "a\u00A0b\u2665c"},
      {"&Afr;&fjlig;&bne;", "\U0001D504fj=\u20E5", "\U0001D504fj=\u20E5"},
      {"&CounterClockwiseContourIntegral;", "\u2233", "\u2233"},
      {"&CounterClockwiseContourIntegrals;", "&CounterClockwiseContourIntegrals;",
       "&CounterClockwiseContourIntegrals;"},
      // What is made is not read again.
      {"&amp;amp; &amp;#38; &&amp;lt;", "&amp; &#38; &&lt;", "&amp; &#38; &&lt;"},
      // Without a semicolon, old names count, in values not before "=", letters and digits.
      {"&amp", "&", "&"},
      {"&copy\u00E9 &copy. &copy&copy", "\u00A9\u00E9 \u00A9. \u00A9\u00A9", "\u00A9\u00E9 \u00A9. \u00A9\u00A9"},
      {"?a=1&copy=2", "?a=1\u00A9=2", "?a=1&copy=2"},
      {"?a=1&copy;=2", "?a=1\u00A9=2", "?a=1\u00A9=2"},
      {"&copyx &copy1 &copyX;", "\u00A9x \u00A91 \u00A9X;", "&copyx &copy1 &copyX;"},
      {"&ampamp;", "&amp;", "&ampamp;"},
      // The longest name counts.
      {"&notin; &notit; &not;", "\u2209 \u00ACit; \u00AC", "\u2209 &notit; \u00AC"},
      {"&frac12 &frac123 &sup1", "\u00BD \u00BD3 \u00B9", "\u00BD &frac123 \u00B9"},
      {"&thetasym; &thorn &THORNx", "\u03D1 \u00FE \u00DEx", "\u03D1 \u00FE &THORNx"},
      // Numbers, in values too, end where their digits do.
      {"&#65;&#x42;&#X43;&#0000068;", "ABCD", "ABCD"},
      {"&#65 &#65B &#x41= &#x41g &#x6Az", "A AB A= Ag jz", "A AB A= Ag jz"},
      {"&#233;&#8364;&#x1F600;&#x10FFFF;", "\u00E9\u20AC\U0001F600\U0010FFFF", "\u00E9\u20AC\U0001F600\U0010FFFF"},
      {"&#13;&#10;&#x7F;&#xFFFE;", "\r\n\x7F\uFFFE", "\r\n\x7F\uFFFE"},
      // Those that stand for something else.
      {"&#x80;&#146;&#x9f;&#x81;&#xA0;", "\u20AC\u2019\u0178\xC2\x81\u00A0", "\u20AC\u2019\u0178\xC2\x81\u00A0"},
      {"&#0;&#xD800;&#xDFFF;&#x110000;", "\uFFFD\uFFFD\uFFFD\uFFFD", "\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"&#4294967361; &#x100000000000000041;", "\uFFFD \uFFFD", "\uFFFD \uFFFD"},
      {"&#xD7FF;&#xE000;", "\uD7FF\uE000", "\uD7FF\uE000"},
  };
  for (const auto& [source, text, value] : cases) {
    SCOPED_TRACE(source);
    EXPECT_EQ(qo::decode(source), text);
    EXPECT_EQ(qo::decode(source, DecodeMode::attribute), value);
  }
}

TEST(Decode, KeepsBytesOfZero) {
  using namespace std::literals;
  EXPECT_EQ(qo::decode("\0&lt;\0&\0&#65\0"sv), "\0<\0&\0A\0"sv);
}

TEST(Decode, TellsTheLengthOfAReference) {
  const struct {
    const char* text;
    std::size_t offset;
    std::size_t in_text;
    std::size_t in_value;
  } cases[] = {
      {"&", 0, 0, 0},       {"&x;", 0, 0, 0},  {"a&lt;b", 1, 4, 4}, {"a&ltb", 1, 3, 0},           {"&notin;", 0, 7, 7},
      {"&notit;", 0, 4, 0}, {"&lt=", 0, 3, 0}, {"&#65;;", 0, 5, 5}, {"&#00000000065", 0, 13, 13}, {"&#x41;", 0, 6, 6},
      {"&#x", 0, 0, 0},
  };
  for (const auto& [text, offset, in_text, in_value] : cases) {
    SCOPED_TRACE(text);
    EXPECT_EQ(qo::reference_length(text, offset, DecodeMode::text), in_text);
    EXPECT_EQ(qo::reference_length(text, offset, DecodeMode::attribute), in_value);
  }
}

}  // namespace
