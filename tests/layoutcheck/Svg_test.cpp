#include "platenest/layoutcheck/Svg.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <limits>
#include <set>

#include "XmlText.h"
#include "platenest/foundation/Errors.h"

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

// One tag at the head of Rest without its brackets; empty if it is none. Every attribute stands in double quotes.
std::string_view TagOf(std::string_view Rest) {
  bool quoted = false;
  for (std::size_t i = 1; i < Rest.size(); ++i) {
    if (Rest[i] == '<') return {};
    if (Rest[i] == '"') {
      if (!quoted && Rest[i - 1] != '=') return {};
      quoted = !quoted;
    }
    if (Rest[i] == '>' && !quoted) return Rest.substr(1, i - 1);
  }
  return {};
}

bool IsReference(std::string_view Rest) {
  for (const std::string_view name : {"&amp;", "&lt;", "&gt;", "&quot;", "&#39;", "&#9;", "&#10;", "&#13;"})
    if (Rest.starts_with(name)) return true;
  return false;
}

// All text is UTF-8 that XML can hold, and every "&" begins a reference.
std::string FaultOfCharacters(std::string_view Xml) {
  for (std::string_view rest = Xml; !rest.empty();) {
    const detail::TCodePoint next = detail::NextCodePoint(rest);
    if (next.Value == 0xFFFD && next.Bytes == 1) return "no UTF-8";
    if (next.Value < 0x20 && next.Value != '\n') return "control character";
    if (next.Value == '&' && !IsReference(rest)) return "bare ampersand";
    rest.remove_prefix(next.Bytes);
  }
  return {};
}

// Tags open and close in pairs, and no other "<" or ">" occurs.
std::string FaultOfXml(std::string_view Xml) {
  if (std::string fault = FaultOfCharacters(Xml); !fault.empty()) return fault;
  std::vector<std::string_view> open;
  for (std::size_t at = Xml.find_first_of("<>"); at != std::string_view::npos; at = Xml.find_first_of("<>", at)) {
    const std::string_view tag = Xml[at] == '<' ? TagOf(Xml.substr(at)) : std::string_view();
    if (tag.empty()) return "stray bracket before " + std::string(Xml.substr(at, 40));
    const std::string_view name = tag.substr(0, tag.find(' '));
    if (name[0] == '/') {
      if (open.empty() || open.back() != name.substr(1)) return "unexpected " + std::string(name);
      open.pop_back();
    } else if (tag.back() != '/') {
      open.push_back(name);
    }
    at += tag.size() + 2;
  }
  return open.empty() ? "" : "not closed";
}

TEST(RectLayoutSvg, HostileTextsStayText) {
  const std::pair<std::string, std::string> cases[] = {
      {"\"/><script>alert(1)</script>&amp;'", "&quot;/&gt;&lt;script&gt;alert(1)&lt;/script&gt;&amp;amp;&#39;"},
      {"]]><!-- \x01\x1b\n\t", "]]&gt;&lt;!-- \xEF\xBF\xBD\xEF\xBF\xBD&#10;&#9;"},
      {std::string("a\0b", 3),
       "a\xEF\xBF\xBD"
       "b"},
      {"\xC3(\xE2\x82|\xFF\xF0\x9F\x98",
       "\xEF\xBF\xBD(\xEF\xBF\xBD\xEF\xBF\xBD|\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
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
    EXPECT_EQ(FaultOfXml(svg), "") << svg;
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
    EXPECT_EQ(FaultOfXml(RectLayoutSvg(picture)), "");
    EXPECT_THAT(RectLayoutSvg(picture), HasSubstr(head + std::string(" viewBox=\"0 0 2440 1220\"")));
    EXPECT_THAT(RectLayoutSvg(picture), HasSubstr("<g transform=\"matrix(1 0 0 -1 0 1220)\">"));
  }
}

TEST(RectLayoutSvg, NumbersAreShortInEveryLocale) {
  TLayoutPicture picture = OnePart("a");
  picture.Parts[0].Box = {0.1 + 0.2, 0, 0.1 + 0.2 + 400.1, 1000};
  const char* const former = std::setlocale(LC_ALL, "de_DE.UTF-8");
  EXPECT_THAT(RectLayoutSvg(picture), HasSubstr("x=\"0.3\" y=\"0\" width=\"400.1\" height=\"1000\""));
  if (former != nullptr) std::setlocale(LC_ALL, "C");
  for (const double side : {1e-90, 3e-3, 7.0, 1e6, 1e90}) {
    picture.Width = picture.Height = side;
    picture.Parts[0].Box = {side / 3, side / 3, side / 2, side / 2};
    picture.Free = TPlacedBox{0, 0, side / 4, side};
    EXPECT_EQ(FaultOfXml(RectLayoutSvg(picture)), "") << side;
  }
}

TEST(RectLayoutSvg, TextShrinksStandsUprightOrIsLeftOut) {
  const auto textsIn = [](double width, double height) {
    TLayoutPicture picture = OnePart("shelf");
    picture.Parts[0].Box = {0, 0, width, height};
    return RectLayoutSvg(picture);
  };
  EXPECT_THAT(textsIn(800, 600), AllOf(HasSubstr(">shelf<tspan"), HasSubstr(">800 \xC3\x97 600</tspan>")));
  EXPECT_THAT(textsIn(800, 600), Not(HasSubstr("rotate(")));
  EXPECT_THAT(textsIn(80, 600), HasSubstr("rotate(-90 40 -300)"));
  EXPECT_THAT(textsIn(80, 30), HasSubstr(">shelf</text>"));
  EXPECT_THAT(textsIn(20, 15), Not(HasSubstr("<text")));
}

TEST(RectLayoutSvg, MarksTurnedPartsMarginAndOffcut) {
  TLayoutPicture picture = OnePart("a");
  EXPECT_THAT(RectLayoutSvg(picture), HasSubstr("M540.72 20l29.28 29.28")) << "at the lower right corner";
  EXPECT_THAT(RectLayoutSvg(picture), Not(HasSubstr("stroke-dasharray")));
  picture.Parts[0].Turned = false;
  picture.Margin = {1, 2, 3, 4};
  picture.Free = TPlacedBox{600, 0, 3000, 1220};  // sticks out
  const std::string svg = RectLayoutSvg(picture);
  EXPECT_EQ(FaultOfXml(svg), "");
  EXPECT_THAT(svg, HasSubstr("x=\"1\" y=\"2\" width=\"2436\" height=\"1214\""));
  EXPECT_THAT(svg, HasSubstr("x=\"600\" y=\"0\" width=\"1840\" height=\"1220\""));
  EXPECT_THAT(svg, HasSubstr("free 1840 \xC3\x97 1220"));
  EXPECT_THAT(svg, Not(HasSubstr("quarter turn")));
}

TEST(RectLayoutSvg, RefusesWhatCannotBeDrawn) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  TLayoutPicture kind = OnePart("a"), box = kind, width = kind, margin = kind;
  kind.Parts[0].Kind = 1;
  box.Parts[0].Box.Top = margin.Margin[2] = nan;
  width.Width = 0;
  EXPECT_THROW(RectLayoutSvg(kind), TRangeError);
  for (const TLayoutPicture& bad : {box, width, margin}) EXPECT_THROW(RectLayoutSvg(bad), TArgumentError);
}

TEST(KindColour, DiffersForFortyTwoKinds) {
  std::set<std::string> colours;
  for (int kind = 0; kind < 42; ++kind) colours.insert(KindColour(kind));
  EXPECT_EQ(colours.size(), 42u);
  EXPECT_EQ(KindColour(42), KindColour(0));
}

}  // namespace
}  // namespace platenest
