#include "platenest/layoutcheck/Svg.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string_view>

#include "Guards.h"
#include "SvgWriter.h"
#include "TextOf.h"
#include "XmlText.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/Types.h"

namespace platenest {

namespace {

using detail::PowerOfTen;
using detail::TextOf;
using detail::TWriter;
using detail::XmlText;

// Sizes of the drawing, as shares of the plate's longer side.
constexpr double kLine = 1.0 / 1200;   // outlines
constexpr double kLeastText = 0.0065;  // smallest readable type when the picture fills a screen
constexpr double kLargestText = 0.02;
constexpr double kHatchSpacing = 1.0 / 80;
constexpr double kCornerMark = 0.012;  // longest leg of the mark on turned parts

// As shares of the part.
constexpr double kLineOfPart = 1.0 / 16;  // of its shorter side: outlines never swallow small parts
constexpr double kMarkOfPart = 0.28;      // of its shorter side
constexpr double kTextRoom = 0.9;         // of its sides

constexpr double kLineHeight = 1.2;   // ems
constexpr double kBaseline = 0.35;    // ems from the middle of a line of text down to its baseline
constexpr double kComfort = 1.5;      // a second line is added only if type stays this much above the smallest
constexpr double kUprightGain = 1.3;  // text stands upright only if it becomes this much larger

// Decimal digits of the plate's longer side.
constexpr int kDrawnDigits = 10;   // in coordinates
constexpr int kWrittenDigits = 6;  // in sizes that people read

// Plates that doubles can be drawn on without running out of exponents.
constexpr double kLeastSide = 1e-100;
constexpr double kLargestSide = 1e100;

constexpr std::string_view kDark = "#1c1c1c";
constexpr std::string_view kLight = "#fff";

struct TColour {
  double Red;
  double Green;
  double Blue;
};

constexpr TColour kHues[] = {{86, 180, 233},  {230, 159, 0}, {0, 158, 115}, {240, 228, 66},
                             {204, 121, 167}, {213, 94, 0},  {0, 114, 178}};
// Toward white above 0, toward black below 0.
constexpr double kShades[] = {0, 0.5, -0.35, 0.75, 0.25, -0.55};

TColour ColourOf(int Kind) {
  const int hues = static_cast<int>(std::size(kHues));
  const TColour hue = kHues[Kind % hues];
  const double shade = kShades[Kind / hues % static_cast<int>(std::size(kShades))];
  const auto mix = [&](double V) { return shade >= 0 ? V + (255 - V) * shade : V * (1 + shade); };
  return {mix(hue.Red), mix(hue.Green), mix(hue.Blue)};
}

// True where white reads better than black: by the relative luminance of the web's contrast rule.
bool IsDark(const TColour& C) {
  const auto linear = [](double V) { return std::pow(V / 255, 2.2); };
  return 0.2126 * linear(C.Red) + 0.7152 * linear(C.Green) + 0.0722 * linear(C.Blue) < 0.2;
}

void CheckPicture(const TLayoutPicture& Picture, std::string_view Function) {
  for (const double side : {Picture.Width, Picture.Height})
    if (!(side >= kLeastSide && side <= kLargestSide))
      throw TArgumentError(TextOf("[Error] LayoutCheck.", Function, ": the plate's size cannot be drawn"));
  for (const double margin : Picture.Margin)
    if (!(margin >= 0 && std::isfinite(margin)))
      throw TArgumentError(TextOf("[Error] LayoutCheck.", Function, ": a margin is not finite or below 0"));
  if (Picture.Free) detail::RequireProper(*Picture.Free, Function, "the free box");
  for (const TPicturePart& part : Picture.Parts) {
    detail::RequireProper(part.Box, Function, "the box of a part");
    if (part.Kind < 0 || part.Kind >= Size(Picture.Kinds))
      throw TRangeError(TextOf("[Error] LayoutCheck.", Function, ": kind ", part.Kind, " is not in the list"));
  }
}

enum class TDrawnAs : std::uint8_t { Boxes, Circles };

// A line or two of text and how they stand in a part.
struct TFit {
  double FontSize = 0;  // 0: no room
  bool Upright = false;
};

// Widest is the width of the longest line in ems.
TFit FitText(const TPlacedBox& Box, double Widest, int Lines, double Largest) {
  const auto fit = [&](double Along, double Across) {
    return std::min({Largest, kTextRoom * Along / Widest, kTextRoom * Across / (kLineHeight * Lines)});
  };
  const double level = fit(Box.Width(), Box.Height());
  const double upright = fit(Box.Height(), Box.Width());
  return upright > kUprightGain * level ? TFit{upright, true} : TFit{level, false};
}

// The same in a circle: the corners of the text stay within it.
TFit FitTextInCircle(double Diameter, double Widest, int Lines, double Largest) {
  return {std::min(Largest, kTextRoom * Diameter / std::hypot(Widest, kLineHeight * Lines)), false};
}

class TPainter {
 public:
  TPainter(const TLayoutPicture& Picture, TDrawnAs DrawnAs)
      : FPicture(Picture),
        FDrawnAs(DrawnAs),
        FLong(std::max(Picture.Width, Picture.Height)),
        FOut(FLong, kDrawnDigits) {
    if (Picture.Free) FFree = OnPlate(*Picture.Free);
    for (const TPictureKind& kind : Picture.Kinds) {
      const std::string& label = kind.Label.empty() ? kind.Id : kind.Label;
      const int index = Size(FKinds);
      FKinds.push_back(
          {XmlText(kind.Id), XmlText(label), detail::TextWidth(label), KindColour(index), IsDark(ColourOf(index))});
    }
  }

  std::string Paint() {
    FOut.Reserve(4096 + 128 * FPicture.Parts.size());
    Head();
    FOut << "<g transform=\"matrix(1 0 0 -1 0 " << FPicture.Height << ")\">\n";
    Plate();
    FreeBox();
    Parts();
    CornerMarks(false);
    CornerMarks(true);
    Texts();
    FOut << "</g>\n</svg>\n";
    return FOut.Take();
  }

 private:
  struct TKindStyle {
    std::string Id;  // escaped
    std::string Label;
    double LabelWidth;
    std::string Fill;
    bool IsDark;
  };

  std::optional<TPlacedBox> OnPlate(const TPlacedBox& Box) const {
    const TPlacedBox part{std::max(Box.Left, 0.0), std::max(Box.Bottom, 0.0), std::min(Box.Right, FPicture.Width),
                          std::min(Box.Top, FPicture.Height)};
    return part.IsProper() ? std::optional(part) : std::nullopt;
  }

  void Head() {
    detail::OpenSvg(FOut, FPicture.Width, FPicture.Height, FPicture.Units);
    FOut << "<title>";
    if (FPicture.Title.empty())
      PlateSize();
    else
      FOut << XmlText(FPicture.Title);
    FOut << "</title>\n<desc>";
    if (FPicture.Description.empty())
      Describe();
    else
      FOut << XmlText(FPicture.Description);
    FOut << "</desc>\n";
  }

  void PlateSize() {
    FOut << "Plate " << FPicture.Width << " by " << FPicture.Height;
    if (FPicture.Units != "none") FOut << " " << XmlText(FPicture.Units);
  }

  void Describe() {
    constexpr int kMostKinds = 12;
    PlateSize();
    FOut << " with " << static_cast<double>(FPicture.Parts.size())
         << (FPicture.Parts.size() == 1 ? " part." : " parts.");
    std::vector<int> counts(FKinds.size());
    for (const TPicturePart& part : FPicture.Parts) ++counts[part.Kind];
    for (int kind = 0; kind < std::min(kMostKinds, Size(counts)); ++kind)
      FOut << (kind == 0 ? " " : ", ") << FKinds[kind].Id << ": " << static_cast<double>(counts[kind]);
    if (Size(counts) > kMostKinds) FOut << " and " << static_cast<double>(Size(counts) - kMostKinds) << " more kinds";
    if (!counts.empty()) FOut << ".";
    if (std::ranges::any_of(FPicture.Parts, &TPicturePart::Turned))
      FOut << " A line across the lower right corner marks a part turned a quarter turn.";
    if (FFree) FOut << " Hatched: the largest free rectangle.";
  }

  void BoxAttributes(const TPlacedBox& Box) {
    FOut << " x=\"" << Box.Left << "\" y=\"" << Box.Bottom << "\" width=\"" << Box.Width() << "\" height=\""
         << Box.Height() << "\"";
  }

  bool IsRound() const { return FDrawnAs == TDrawnAs::Circles; }

  void PartAttributes(const TPlacedBox& Box) {
    if (!IsRound()) return BoxAttributes(Box);
    FOut << " cx=\"" << (Box.Left + Box.Right) / 2 << "\" cy=\"" << (Box.Bottom + Box.Top) / 2 << "\" r=\""
         << Box.Width() / 2 << "\"";
  }

  // Half of the plate's outline falls outside the picture.
  void Plate() {
    FOut << "<rect";
    BoxAttributes({0, 0, FPicture.Width, FPicture.Height});
    FOut << " fill=\"#f3f2ee\" stroke=\"#555\" stroke-width=\"" << 2.4 * kLine * FLong << "\"/>\n";
    const auto [left, bottom, right, top] = FPicture.Margin;
    const TPlacedBox usable{left, bottom, FPicture.Width - right, FPicture.Height - top};
    if (std::max({left, bottom, right, top}) == 0 || !usable.IsProper()) return;
    FOut << "<rect";
    BoxAttributes(usable);
    FOut << " fill=\"none\" stroke=\"#888\" stroke-width=\"" << kLine * FLong << "\" stroke-dasharray=\""
         << 8 * kLine * FLong << " " << 5 * kLine * FLong << "\"/>\n";
  }

  void FreeBox() {
    if (!FFree) return;
    const TPlacedBox& box = *FFree;
    FOut << "<rect";
    BoxAttributes(box);
    FOut << " fill=\"#fff\"/>\n<path fill=\"none\" stroke=\"#c4c4c0\" stroke-width=\"" << 0.6 * kLine * FLong
         << "\" d=\"";
    const double width = box.Width();
    const double height = box.Height();
    const double step = kHatchSpacing * FLong;
    for (double at = step; at < width + height; at += step) {
      const double along = std::min(at, width);
      const double up = std::min(at, height);
      FOut << "M" << box.Left + along << " " << box.Bottom + at - along << "L" << box.Left + at - up << " "
           << box.Bottom + up;
    }
    FOut << "\"/>\n<rect";
    BoxAttributes(box);
    FOut << " fill=\"none\" stroke=\"#888\" stroke-width=\"" << 0.8 * kLine * FLong << "\"/>\n";
  }

  // No wider than the smallest part of the layout bears.
  double OutlineWidth() const {
    double width = kLine * FLong;
    for (const TPicturePart& part : FPicture.Parts)
      width = std::min(width, kLineOfPart * std::min(part.Box.Width(), part.Box.Height()));
    return width;
  }

  void Parts() {
    FOut << "<g stroke=\"" << kDark << "\" stroke-width=\"" << OutlineWidth() << "\">\n";
    for (const TPicturePart& part : FPicture.Parts) {
      const TKindStyle& style = FKinds[part.Kind];
      FOut << (IsRound() ? "<circle" : "<rect") << " data-part=\"" << style.Id << "\"";
      PartAttributes(part.Box);
      FOut << " fill=\"" << style.Fill << "\"/>\n";
    }
    FOut << "</g>\n";
  }

  // One path for the marks on light fills and one for those on dark ones.
  void CornerMarks(bool OnDark) {
    const auto isMarked = [&](const TPicturePart& P) { return P.Turned && FKinds[P.Kind].IsDark == OnDark; };
    if (std::ranges::none_of(FPicture.Parts, isMarked)) return;
    FOut << "<path fill=\"none\" stroke=\"" << (OnDark ? kLight : kDark) << "\" stroke-width=\"" << OutlineWidth()
         << "\" d=\"";
    for (const TPicturePart& part : FPicture.Parts) {
      if (!isMarked(part)) continue;
      const double leg = std::min(kCornerMark * FLong, kMarkOfPart * std::min(part.Box.Width(), part.Box.Height()));
      FOut << "M" << part.Box.Right - leg << " " << part.Box.Bottom << "l" << leg << " " << leg;
    }
    FOut << "\"/>\n";
  }

  // Texts stand in a group of their own that turns the y axis down again. It also brings its lengths into the range of
  // common type sizes: renderers are careless with type of a few thousandths, as a plate in metres would have it.
  void Texts() {
    FTextScale = PowerOfTen(FLong) / 1000;
    FOut << "<g transform=\"scale(" << FTextScale << " " << -FTextScale
         << ")\" font-family=\"Arial,Helvetica,sans-serif\" text-anchor=\"middle\" pointer-events=\"none\" fill=\""
         << kDark << "\">\n";
    if (FFree) FreeText(*FFree);
    for (const TPicturePart& part : FPicture.Parts)
      if (std::max(part.Box.Width(), part.Box.Height()) > 2 * kLeastText * FLong) PartText(part);
    FOut << "</g>\n";
  }

  void PartText(const TPicturePart& Part) {
    const TKindStyle& style = FKinds[Part.Kind];
    const std::string size = IsRound() ? RadiusText(Part.Box) : SizeText(Part.Box);
    const double widest = std::max(style.LabelWidth, detail::TextWidth(size));
    const TFit both = FitPart(Part.Box, widest, 2);
    if (both.FontSize >= kComfort * kLeastText * FLong) return Text(Part.Box, both, style.Label, size, style.IsDark);
    const TFit single = FitPart(Part.Box, style.LabelWidth, 1);
    if (single.FontSize >= kLeastText * FLong) Text(Part.Box, single, style.Label, {}, style.IsDark);
  }

  TFit FitPart(const TPlacedBox& Box, double Widest, int Lines) const {
    const double largest = kLargestText * FLong;
    return IsRound() ? FitTextInCircle(Box.Width(), Widest, Lines, largest) : FitText(Box, Widest, Lines, largest);
  }

  void FreeText(const TPlacedBox& Box) {
    const std::string text = TextOf("free ", SizeText(Box));
    const TFit fit = FitText(Box, detail::TextWidth(text), 1, kLargestText * FLong);
    if (fit.FontSize >= kLeastText * FLong) Text(Box, fit, text, {}, false);
  }

  std::string SizeText(const TPlacedBox& Box) const {
    TWriter text(FLong, kWrittenDigits);
    text << Box.Width() << " \xC3\x97 " << Box.Height();
    return text.Take();
  }

  std::string RadiusText(const TPlacedBox& Box) const {
    TWriter text(FLong, kWrittenDigits);
    text << "r " << Box.Width() / 2;
    return text.Take();
  }

  // Line1 is escaped, Line2 needs no escaping.
  void Text(const TPlacedBox& Box, const TFit& Fit, std::string_view Line1, std::string_view Line2, bool Light) {
    const double x = (Box.Left + Box.Right) / 2 / FTextScale;
    const double y = -(Box.Bottom + Box.Top) / 2 / FTextScale;
    const double size = Fit.FontSize / FTextScale;
    const double up = Line2.empty() ? 0 : kLineHeight / 2;
    FOut << "<text x=\"" << Coarse(x) << "\" y=\"" << Coarse(y + (kBaseline - up) * size) << "\" font-size=\""
         << Coarse(size) << "\"";
    if (Light) FOut << " fill=\"" << kLight << "\"";
    if (Fit.Upright) FOut << " transform=\"rotate(-90 " << Coarse(x) << " " << Coarse(y) << ")\"";
    FOut << ">" << Line1;
    if (!Line2.empty())
      FOut << "<tspan x=\"" << Coarse(x) << "\" dy=\"" << Coarse(kLineHeight * size) << "\">" << Line2 << "</tspan>";
    FOut << "</text>\n";
  }

  // Texts need no more than a hundredth of a unit on their scale.
  static double Coarse(double V) { return RoundHalfEven(V * 100) / 100; }

  const TLayoutPicture& FPicture;
  TDrawnAs FDrawnAs;
  double FLong;  // the plate's longer side
  TWriter FOut;
  std::optional<TPlacedBox> FFree;
  std::vector<TKindStyle> FKinds;
  double FTextScale = 1;
};

}  // namespace

std::string KindColour(int Kind) {
  constexpr char kDigits[] = "0123456789abcdef";
  const TColour colour = ColourOf(std::max(Kind, 0));
  std::string text = "#";
  for (const double part : {colour.Red, colour.Green, colour.Blue}) {
    const int value = Round<int>(part);
    text += kDigits[value / 16];
    text += kDigits[value % 16];
  }
  return text;
}

std::string RectLayoutSvg(const TLayoutPicture& Picture) {
  CheckPicture(Picture, "RectLayoutSvg");
  return TPainter(Picture, TDrawnAs::Boxes).Paint();
}

std::string CircleLayoutSvg(const TLayoutPicture& Picture) {
  CheckPicture(Picture, "CircleLayoutSvg");
  return TPainter(Picture, TDrawnAs::Circles).Paint();
}

}  // namespace platenest
