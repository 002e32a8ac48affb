// FilterMarkdownText / FilterMarkdownWide.
#include <gtest/gtest.h>

#include <string>

#include "file_encoder.h"
#include "test_support.h"

namespace {

std::string Markdown(const std::string& markdown) {
  const int32_t size =
      FilterMarkdownText(markdown.data(), static_cast<int32_t>(markdown.size()), nullptr, 0);
  EXPECT_EQ(EngineGetLastError(), 0u);
  std::string out(static_cast<size_t>(size) + 1, '\0');
  EXPECT_EQ(FilterMarkdownText(markdown.data(), static_cast<int32_t>(markdown.size()), out.data(),
                               size + 1),
            size);
  out.resize(static_cast<size_t>(size));
  return out;
}

TEST(MarkdownFilter, HeadingLosesItsMarkers) {
  EXPECT_EQ(Markdown("## Getting started"), "Getting started");
  EXPECT_EQ(Markdown("#hashtag"), "#hashtag");
}

TEST(MarkdownFilter, ThreeEmptyLinesBecomeOne) {
  EXPECT_EQ(Markdown("one\n\n\n\ntwo"), "one\n\ntwo");
  EXPECT_EQ(Markdown("one\r\n\r\n\r\n\r\ntwo"), "one\n\ntwo");
  EXPECT_EQ(Markdown("one\rtwo"), "one\ntwo");
}

TEST(MarkdownFilter, OrderedItemWithParenthesisGetsAPeriod) {
  EXPECT_EQ(Markdown("1) first\n2) second"), "1. first\n2. second");
}

TEST(MarkdownFilter, LinkKeepsAnAddressWithASchemeOnly) {
  EXPECT_EQ(Markdown("[site](https://example.com/a)"), "site (https://example.com/a)");
  EXPECT_EQ(Markdown("[page](docs/page.md)"), "page");
  EXPECT_EQ(Markdown("[top](#top)"), "top");
  EXPECT_EQ(Markdown("[cdn](//cdn.example.com/x.js)"), "cdn (//cdn.example.com/x.js)");
  EXPECT_EQ(Markdown("[t](http://x.org/a_(b) \"Title\")"), "t (http://x.org/a_(b))");
  EXPECT_EQ(Markdown("![logo](https://x.org/l.png)"), "logo (https://x.org/l.png)");
}

TEST(MarkdownFilter, AutolinkVanishes) {
  // Two blanks in a row are kept; a third would not be.
  EXPECT_EQ(Markdown("see <https://example.com> now"), "see  now");
  EXPECT_EQ(Markdown("a <b>bold</b> word"), "a bold word");
  EXPECT_EQ(Markdown("1 <2> 3"), "1 2 3");
}

TEST(MarkdownFilter, SnakeCaseKeepsUnderscoresEmphasisGoes) {
  EXPECT_EQ(Markdown("call snake_case_name now"), "call snake_case_name now");
  EXPECT_EQ(Markdown("a **bold** and _it_ and ~~gone~~"), "a bold and it and gone");
}

TEST(MarkdownFilter, TableBecomesLinesOfCells) {
  EXPECT_EQ(Markdown("| Name | Size |\n|:-----|-----:|\n| a | 1 |\n| b | 2 |\n"),
            "Name Size\na 1\nb 2\n");
  EXPECT_EQ(Markdown("x | y\n--- | ---\n1 | 2\n\nafter"), "x y\n1 2\n\nafter");
}

TEST(MarkdownFilter, FencedAndInlineCode) {
  EXPECT_EQ(Markdown("```c\nint  *p;\n```\ndone"), "\nint  *p;\n\ndone");
  EXPECT_EQ(Markdown("use `a*b` here"), "use a*b here");
  EXPECT_EQ(Markdown("``double``"), "double");
}

TEST(MarkdownFilter, QuotesBreaksAndBullets) {
  EXPECT_EQ(Markdown("> quoted\n> > deeper"), "quoted\ndeeper");
  // The break's line goes; the line ends around it stay.
  EXPECT_EQ(Markdown("above\n\n---\n\nbelow"), "above\n\n\n\nbelow");
  EXPECT_EQ(Markdown("* one\n+ two\n- three"), "- one\n- two\n- three");
  // No blank needed after a bullet: a line that starts with emphasis is an item.
  EXPECT_EQ(Markdown("*note* this"), "- note this");
}

TEST(MarkdownFilter, BackslashEscapes) {
  EXPECT_EQ(Markdown("\\*not emphasis\\*"), "*not emphasis*");
}

TEST(MarkdownFilter, LengthCountsWhatDidNotFit) {
  fe::test::GuardedBuffer buffer(6);
  const int32_t n = FilterMarkdownText("# Hello world", -1, buffer.chars(), buffer.size());
  EXPECT_EQ(n, 11);
  EXPECT_EQ(std::string(buffer.chars()), "Hello");
  EXPECT_TRUE(buffer.GuardIntact());
}

TEST(MarkdownFilter, ArgumentErrors) {
  char out[8];
  FilterMarkdownText(nullptr, -1, out, 8);
  EXPECT_EQ(EngineGetLastError(), 87u);
  FilterMarkdownText("x", -1, out, -1);
  EXPECT_EQ(EngineGetLastError(), 87u);
  FilterMarkdownText("x", INT32_MAX, out, 8);
  EXPECT_EQ(EngineGetLastError(), 87u);
  EXPECT_EQ(FilterMarkdownText("", -1, out, 8), 0);
  EXPECT_EQ(EngineGetLastError(), 0u);
}

TEST(MarkdownFilter, WideFormConvertsAroundTheCore) {
  const char16_t* markdown = u"# \u00DCber\n\nso **gr\u00FC\u00DF**";
  const int32_t size = FilterMarkdownWide(markdown, nullptr, 0);
  std::u16string out(static_cast<size_t>(size) + 1, u'\0');
  EXPECT_EQ(FilterMarkdownWide(markdown, out.data(), size + 1), size);
  out.resize(static_cast<size_t>(size));
  EXPECT_EQ(out, u"\u00DCber\n\nso gr\u00FC\u00DF");
  FilterMarkdownWide(nullptr, out.data(), 4);
  EXPECT_EQ(EngineGetLastError(), 87u);
}

}  // namespace
