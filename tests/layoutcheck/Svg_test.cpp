#include "platenest/layoutcheck/Svg.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <cmath>

#include "XmlText.h"
#include "platenest/foundation/Errors.h"
#include "platenest/layoutcheck/NfpSvg.h"
#include "platenest/layoutcheck/PartSvg.h"

namespace platenest {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

TLayoutPicture OnePart(const std::string& Id) {
  TLayoutPicture picture;
  picture.Width = 2440;
  picture.Height = 1220;
  picture.Kinds = {{Id, ""}};
  picture.Parts = {{{10, 20, 570, 740}, 0, true}};
  return picture;
}

TEST(RectLayoutSvg, HostileTextsStayText) {
  const std::pair<std::string, std::string> cases[] = {
      {"\"/><script>alert(1)</script>&amp;'", "&quot;/&gt;&lt;script&gt;alert(1)&lt;/script&gt;&amp;amp;&#39;"},
      {"]]><!-- \x01\x1b\n\t", "]]&gt;&lt;!-- \xEF\xBF\xBD\xEF\xBF\xBD&#10;&#9;"},
      {"\xC3(\xFF", "\xEF\xBF\xBD(\xEF\xBF\xBD"},
      {"\xC0\xAF", "\xEF\xBF\xBD\xEF\xBF\xBD"},                  // overlong
      {"\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},  // half of a surrogate pair
      {"\xEF\xBF\xBF", "\xEF\xBF\xBD"},                          // no character in XML
      {"\xE9\x97\xA8 \xF0\x9F\x98\x80 \xC3\xA9", "\xE9\x97\xA8 \xF0\x9F\x98\x80 \xC3\xA9"},
  };
  for (const auto& [id, escaped] : cases) {
    EXPECT_EQ(detail::XmlText(id), escaped);
    TLayoutPicture picture = OnePart(id);
    picture.Title = picture.Description = picture.Kinds[0].Label = id;
    const std::string svg = RectLayoutSvg(picture);
    EXPECT_THAT(svg, HasSubstr("<rect data-part=\"" + escaped + "\" x=\"10\" y=\"20\" width=\"560\" height=\"720\""));
    EXPECT_THAT(svg, HasSubstr("<title>" + escaped + "</title>\n<desc>" + escaped + "</desc>"));
  }
}

TEST(RectLayoutSvg, PictureHasTheSizeOfThePlate) {
  const char* heads[][2] = {{"mm", "width=\"2440mm\" height=\"1220mm\""},
                            {"m", "width=\"2440000mm\" height=\"1220000mm\""},
                            {"<i>", "width=\"2440\" height=\"1220\""}};
  TLayoutPicture picture = OnePart("a");
  for (const auto& [units, head] : heads) {
    picture.Units = units;
    EXPECT_THAT(RectLayoutSvg(picture), HasSubstr(head + std::string(" viewBox=\"0 0 2440 1220\"")));
    EXPECT_THAT(
        RectLayoutSvg(picture),
        HasSubstr("<g transform=\"matrix(1 0 0 -1 0 1220)\">\n<rect x=\"0\" y=\"0\" width=\"2440\" height=\"1220\""));
  }
}

TEST(RectLayoutSvg, NumbersAreShortInEveryLocale) {
  TLayoutPicture picture = OnePart("a");
  picture.Parts[0].Box = {0.1 + 0.2, 0, 0.1 + 0.2 + 400.1, 1000};
  const char* const former = std::setlocale(LC_ALL, "de_DE.UTF-8");
  EXPECT_THAT(RectLayoutSvg(picture), HasSubstr("x=\"0.3\" y=\"0\" width=\"400.1\" height=\"1000\""));
  if (former != nullptr) std::setlocale(LC_ALL, "C");
}

TEST(RectLayoutSvg, TextShrinksStandsUprightOrIsLeftOut) {
  const auto textsIn = [](double width, double height) {
    TLayoutPicture picture = OnePart("shelf");
    picture.Parts[0].Box = {0, 0, width, height};
    return RectLayoutSvg(picture);
  };
  EXPECT_THAT(textsIn(800, 600), AllOf(HasSubstr(">shelf<tspan"), HasSubstr(">800 \xC3\x97 600</tspan>")));
  EXPECT_THAT(textsIn(80, 600), HasSubstr("rotate(-90 40 -300)"));
  EXPECT_THAT(textsIn(80, 30), HasSubstr(">shelf</text>"));
  EXPECT_THAT(textsIn(20, 15), Not(HasSubstr("<text")));
}

TEST(RectLayoutSvg, MarksTurnedPartsMarginAndOffcut) {
  TLayoutPicture picture = OnePart("a");
  EXPECT_THAT(RectLayoutSvg(picture), HasSubstr("M540.72 20l29.28 29.28")) << "at the lower right corner";
  picture.Parts[0].Box.Top = std::nan("");
  EXPECT_THROW(RectLayoutSvg(picture), TArgumentError);
  picture.Parts[0].Box.Top = 740;
  picture.Parts[0].Turned = false;
  picture.Margin = {1, 2, 3, 4};
  picture.Free = TPlacedBox{600, 0, 3000, 1220};  // sticks out
  const std::string svg = RectLayoutSvg(picture);
  EXPECT_THAT(svg, HasSubstr("x=\"1\" y=\"2\" width=\"2436\" height=\"1214\""));
  EXPECT_THAT(svg, HasSubstr("x=\"600\" y=\"0\" width=\"1840\" height=\"1220\""));
  EXPECT_THAT(svg, HasSubstr("free 1840 \xC3\x97 1220"));
  EXPECT_THAT(svg, Not(HasSubstr("quarter turn")));
}

TEST(CircleLayoutSvg, DrawsCirclesWithTextsThatStayInside) {
  TLayoutPicture picture = OnePart("disc");
  picture.Parts = {{{100, 200, 500, 600}, 0}, {{1000.1, 0, 1060.1, 60}, 0}, {{2000, 0, 2020, 20}, 0}};
  const std::string svg = CircleLayoutSvg(picture);
  EXPECT_THAT(svg, HasSubstr("<circle data-part=\"disc\" cx=\"300\" cy=\"400\" r=\"200\""));
  EXPECT_THAT(svg, HasSubstr("<circle data-part=\"disc\" cx=\"1030.1\" cy=\"30\" r=\"30\""));
  EXPECT_THAT(svg, AllOf(HasSubstr("disc: 3."), Not(HasSubstr("turned")), Not(HasSubstr("<rect data-part"))));
  EXPECT_THAT(svg, AllOf(HasSubstr(">disc<tspan"), HasSubstr(">r 200</tspan>"), HasSubstr(">disc</text>")));
  std::size_t texts = 0;
  for (std::size_t at = svg.find("<text"); at != std::string::npos; at = svg.find("<text", at + 1)) ++texts;
  EXPECT_EQ(texts, 2U);  // none in the smallest circle
  picture.Parts[0].Kind = 1;
  EXPECT_THROW(CircleLayoutSvg(picture), TRangeError);
}

TEST(ShapeSvg, HostileTextsStayTextAndWhatCannotBeDrawnIsRefused) {
  const TPictureContours box{{{0, 0}, {4, 0}, {4, 2}, {0, 2}}};
  TNfpPicture pair;
  pair.FixedId = "<script>";
  pair.Fixed = pair.Moving = pair.Region = box;
  EXPECT_THAT(NfpSvg(pair),
              AllOf(HasSubstr("data-part=\"&lt;script&gt;\""), HasSubstr("<g transform=\"matrix(1 0 0 -1 ")));
  pair.Region = {{{0, 0}, {1e300, 0}, {1, 1}}};
  EXPECT_THROW(NfpSvg(pair), TArgumentError);
  TPartPicture part;
  part.Title = "<t>";
  part.PartId = "a\"b";
  part.Remarks = {"x & y"};
  EXPECT_THROW(PartSvg(part), TArgumentError) << "no extent";
  part.Part = box;
  EXPECT_THAT(PartSvg(part), AllOf(HasSubstr("<title>&lt;t&gt;: a&quot;b</title>"), HasSubstr("x &amp; y")));
  const auto marks = [&part] {
    std::string found;
    for (const char* mark : {"data-lines", "data-cell", "data-label", "data-sucker"})
      found += PartSvg(part).find(mark) == std::string::npos ? '-' : 'x';
    return found;
  };
  EXPECT_EQ(marks(), "----");
  part.Lines = box;
  part.Label = {{1, 1, 2, 2}, 0.5};
  EXPECT_EQ(marks(), "x-x-");
  EXPECT_THAT(PartSvg(part), AllOf(HasSubstr("M1 1L2 1L2 2L1 2Z"), HasSubstr("M0.5 0.5L2.5 0.5L2.5 2.5L0.5 2.5Z")));
  part.Lattice = {{5, 0}, {0, 3}};
  part.Disc = {{1, 1}, 0.5};
  EXPECT_EQ(marks(), "xxxx");
  part.Disc = {{INFINITY, 1}, 0.5};
  EXPECT_THROW(PartSvg(part), TArgumentError);
}

}  // namespace
}  // namespace platenest
