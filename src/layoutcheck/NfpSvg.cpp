#include "platenest/layoutcheck/NfpSvg.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "SvgWriter.h"
#include "XmlText.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Types.h"
#include "platenest/layoutcheck/Svg.h"

namespace platenest {

namespace {

using detail::XmlText;

// Sizes of the drawing, as shares of its longer side.
constexpr double kBorder = 0.03;
constexpr double kLine = 1.0 / 500;
constexpr double kDot = 1.0 / 110;
constexpr double kText = 0.022;

constexpr double kLineHeight = 1.5;  // of the legend, ems
constexpr double kTextStart = 1.4;   // ems right of the legend's marks
constexpr int kDrawnDigits = 10;     // of the longer side
constexpr double kMostCoordinate = 1e15;

// Positions in the palette.
constexpr int kFixedColour = 7;
constexpr int kForbiddenColour = 1;
constexpr int kAllowedColour = 2;
constexpr int kMovingColour = 6;

class TBounds {
 public:
  void Add(const TPoint2D& P) {
    if (!(std::fabs(P.X) <= kMostCoordinate && std::fabs(P.Y) <= kMostCoordinate))
      throw TArgumentError("[Error] LayoutCheck.NfpSvg: a coordinate cannot be drawn");
    Low = {std::min(Low.X, P.X), std::min(Low.Y, P.Y)};
    High = {std::max(High.X, P.X), std::max(High.Y, P.Y)};
  }
  void Add(const TPictureContours& Contours, const TPoint2D& Move = {0, 0}) {
    for (const auto& contour : Contours)
      for (const TPoint2D& point : contour) Add(point + Move);
  }

  TPoint2D Low{HUGE_VAL, HUGE_VAL};
  TPoint2D High{-HUGE_VAL, -HUGE_VAL};
};

double LengthOf(const std::vector<TPoint2D>& Contour) {
  double length = 0;
  for (std::size_t i = 0; i < Contour.size(); ++i) {
    const TPoint2D edge = Contour[(i + 1) % Contour.size()] - Contour[i];
    length += std::hypot(edge.X, edge.Y);
  }
  return length;
}

// The point At along a contour.
TPoint2D PointAlong(const std::vector<TPoint2D>& Contour, double At) {
  for (std::size_t i = 0; i < Contour.size(); ++i) {
    const TPoint2D edge = Contour[(i + 1) % Contour.size()] - Contour[i];
    const double length = std::hypot(edge.X, edge.Y);
    if (At <= length && length > 0) return Contour[i] + edge * (At / length);
    At -= length;
  }
  return Contour.front();
}

// Evenly along the longest contour, with one place left for each other contour as long as there are enough.
std::vector<TPoint2D> PlacesOn(const TPictureContours& Region, int Most) {
  std::vector<TPoint2D> places;
  if (Region.empty() || Most < 1) return places;
  const auto longest =
      std::ranges::max_element(Region, [](const auto& A, const auto& B) { return LengthOf(A) < LengthOf(B); });
  const int others = std::min(Size(Region) - 1, Most / 3);
  const int along = Most - others;
  for (int i = 0; i < along; ++i) places.push_back(PointAlong(*longest, LengthOf(*longest) * i / along));
  for (auto contour = Region.begin(); contour != Region.end() && Size(places) < Most; ++contour)
    if (contour != longest && !contour->empty()) places.push_back(contour->front());
  return places;
}

class TNfpPainter {
 public:
  explicit TNfpPainter(const TNfpPicture& Picture)
      : FPicture(Picture),
        FPlaces(PlacesOn(Picture.Region, Picture.MostPlaces)),
        FBounds(BoundsOf()),
        FLong(std::max(FBounds.High.X - FBounds.Low.X, FBounds.High.Y - FBounds.Low.Y)),
        FOut(FLong, kDrawnDigits),
        FFixed(XmlText(Picture.FixedId)),
        FMoving(XmlText(Picture.MovingId)) {}

  std::string Paint() {
    FLeft = FBounds.Low.X - kBorder * FLong;
    FTop = FBounds.High.Y + kBorder * FLong;
    FWidth = FBounds.High.X - FBounds.Low.X + 2 * kBorder * FLong;
    FHeight = FBounds.High.Y - FBounds.Low.Y + 2 * kBorder * FLong;
    const double legend = (3 * kLineHeight + 0.5) * kText * FLong;
    detail::OpenSvg(FOut, FWidth, FHeight + legend, FPicture.Units);
    Head();
    FOut << "<rect width=\"" << FWidth << "\" height=\"" << FHeight + legend << "\" fill=\"#fff\"/>\n";
    FOut << "<g transform=\"matrix(1 0 0 -1 " << -FLeft << " " << FTop << ")\">\n";
    Shapes();
    FOut << "</g>\n";
    Legend();
    FOut << "</svg>\n";
    return FOut.Take();
  }

 private:
  TBounds BoundsOf() const {
    TBounds bounds;
    bounds.Add(FPicture.Fixed);
    bounds.Add(FPicture.Region);
    for (const TPoint2D& place : FPlaces) bounds.Add(FPicture.Moving, place);
    if (FPlaces.empty()) bounds.Add(FPicture.Moving);
    if (!(bounds.High.X > bounds.Low.X && bounds.High.Y > bounds.Low.Y))
      throw TArgumentError("[Error] LayoutCheck.NfpSvg: the shapes have no extent");
    return bounds;
  }

  std::string_view Claim() const {
    if (!FPicture.IsInside) return "the reference point may stand anywhere but inside";
    return FPicture.Region.empty() ? "no place" : "the reference point may stand anywhere inside";
  }

  void Head() {
    FOut << "<title>";
    if (!FPicture.Title.empty()) FOut << XmlText(FPicture.Title) << ": ";
    FOut << FMoving << (FPicture.IsInside ? " inside " : " around ") << FFixed << "</title>\n<desc>";
    FOut << (FPicture.IsInside ? "Inner-fit region of " : "No-fit polygon of ") << FMoving
         << (FPicture.IsInside ? " inside " : " around ") << FFixed << ": " << Claim() << ". "
         << static_cast<double>(FPlaces.size()) << " places of the part are outlined.</desc>\n";
  }

  void Data(const TPictureContours& Contours, const TPoint2D& Move) {
    FOut << " d=\"";
    for (const auto& contour : Contours) {
      for (std::size_t i = 0; i < contour.size(); ++i)
        FOut << (i == 0 ? "M" : "L") << contour[i].X + Move.X << " " << contour[i].Y + Move.Y;
      FOut << "Z";
    }
    FOut << "\"/>\n";
  }

  std::string RegionColour() const { return KindColour(FPicture.IsInside ? kAllowedColour : kForbiddenColour); }

  void Region(bool IsFilled) {
    if (FPicture.Region.empty()) return;
    FOut << "<path data-region=\"" << (FPicture.IsInside ? "inside" : "outside") << "\" fill=\"";
    if (IsFilled)
      FOut << RegionColour() << "\" fill-opacity=\"0.5\" fill-rule=\"evenodd\"";
    else
      FOut << "none\" stroke=\"" << RegionColour() << "\" stroke-width=\"" << 1.6 * kLine * FLong
           << "\" stroke-linejoin=\"round\"";
    Data(FPicture.Region, {0, 0});
  }

  // A polygon lies below the fixed part, a region on the plate; its border is always on top.
  void Shapes() {
    const double line = kLine * FLong;
    if (!FPicture.IsInside) Region(true);
    FOut << "<path data-part=\"" << FFixed << "\" fill=\"" << KindColour(kFixedColour)
         << "\" fill-rule=\"evenodd\" stroke=\"#1c1c1c\" stroke-width=\"" << line << "\"";
    Data(FPicture.Fixed, {0, 0});
    if (FPicture.IsInside) Region(true);
    Region(false);
    for (const TPoint2D& place : FPlaces) {
      FOut << "<path data-part=\"" << FMoving << "\" fill=\"none\" stroke=\"" << KindColour(kMovingColour)
           << "\" stroke-width=\"" << line << "\" stroke-linejoin=\"round\"";
      Data(FPicture.Moving, place);
      FOut << "<circle cx=\"" << place.X << "\" cy=\"" << place.Y << "\" r=\"" << kDot * FLong / 2 << "\" fill=\""
           << KindColour(kMovingColour) << "\"/>\n";
    }
  }

  // Lengths within the group are brought into the range of common type sizes, see RectLayoutSvg. Texts shrink to fit.
  void Legend() {
    const double scale = detail::PowerOfTen(FLong) / 1000;
    const std::string texts[] = {"fixed: " + FPicture.FixedId,
                                 std::string(FPicture.IsInside ? "region: " : "polygon: ") + std::string(Claim()),
                                 "moving: " + FPicture.MovingId + ", dots: its reference point"};
    const std::string colours[] = {KindColour(kFixedColour), RegionColour(), KindColour(kMovingColour)};
    double widest = 1;
    for (const std::string& text : texts) widest = std::max(widest, detail::TextWidth(text) + kTextStart);
    const double em = std::min(kText * FLong, (FWidth - 2 * kBorder * FLong) / widest) / scale;
    FOut << "<g transform=\"translate(" << kBorder * FLong << " " << FHeight << ") scale(" << scale
         << ")\" font-family=\"Arial,Helvetica,sans-serif\" font-size=\"" << em << "\" fill=\"#1c1c1c\">\n";
    for (int i = 0; i < 3; ++i) {
      const double y = i * kLineHeight * em;
      FOut << "<rect y=\"" << y << "\" width=\"" << em << "\" height=\"" << em << "\" fill=\"" << colours[i]
           << "\"/><text x=\"" << kTextStart * em << "\" y=\"" << y + 0.85 * em << "\">" << XmlText(texts[i])
           << "</text>\n";
    }
    FOut << "</g>\n";
  }

  const TNfpPicture& FPicture;
  const std::vector<TPoint2D> FPlaces;
  const TBounds FBounds;
  const double FLong;
  detail::TWriter FOut;
  const std::string FFixed;
  const std::string FMoving;
  double FLeft = 0;
  double FTop = 0;
  double FWidth = 0;
  double FHeight = 0;
};

}  // namespace

std::string NfpSvg(const TNfpPicture& Picture) {
  return TNfpPainter(Picture).Paint();
}

}  // namespace platenest
