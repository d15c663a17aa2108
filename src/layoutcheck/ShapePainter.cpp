#include "ShapePainter.h"

#include <algorithm>
#include <utility>

#include "XmlText.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Types.h"

namespace platenest::detail {

namespace {

// Sizes of the drawing, as shares of its longer side.
constexpr double kBorder = 0.03;
constexpr double kLine = 1.0 / 500;
constexpr double kDot = 1.0 / 220;
constexpr double kText = 0.022;

constexpr double kLineHeight = 1.5;  // of the legend, ems
constexpr double kTextStart = 1.4;   // ems right of the legend's marks
constexpr int kDrawnDigits = 10;     // of the longer side
constexpr double kMostCoordinate = 1e15;

double LongSide(const TBounds& Bounds) {
  if (!Bounds.HasExtent()) throw TArgumentError("[Error] LayoutCheck.ShapePainter: the shapes have no extent");
  return std::max(Bounds.High.X - Bounds.Low.X, Bounds.High.Y - Bounds.Low.Y);
}

}  // namespace

void TBounds::Add(const TPoint2D& P) {
  if (!(std::fabs(P.X) <= kMostCoordinate && std::fabs(P.Y) <= kMostCoordinate))
    throw TArgumentError("[Error] LayoutCheck.ShapePainter: a coordinate cannot be drawn");
  Low = {std::min(Low.X, P.X), std::min(Low.Y, P.Y)};
  High = {std::max(High.X, P.X), std::max(High.Y, P.Y)};
}

void TBounds::Add(const TPictureContours& Contours, const TPoint2D& Move) {
  for (const auto& contour : Contours)
    for (const TPoint2D& point : contour) Add(point + Move);
}

TShapePainter::TShapePainter(const TBounds& Bounds, std::vector<TLegendRow> Legend)
    : FBounds(Bounds),
      FLegend(std::move(Legend)),
      FLong(LongSide(Bounds)),
      FWidth(Bounds.High.X - Bounds.Low.X + 2 * kBorder * FLong),
      FHeight(Bounds.High.Y - Bounds.Low.Y + 2 * kBorder * FLong),
      FOut(FLong, kDrawnDigits) {}

double TShapePainter::Line() const {
  return kLine * FLong;
}

double TShapePainter::Dot() const {
  return kDot * FLong;
}

void TShapePainter::Open(std::string_view Title, std::string_view Description, std::string_view Units) {
  const double height = FHeight + (Size(FLegend) * kLineHeight + 0.5) * kText * FLong;
  OpenSvg(FOut, FWidth, height, Units);
  FOut << "<title>" << XmlText(Title) << "</title>\n<desc>" << XmlText(Description) << "</desc>\n";
  FOut << "<rect width=\"" << FWidth << "\" height=\"" << height << "\" fill=\"#fff\"/>\n";
  FOut << "<g transform=\"matrix(1 0 0 -1 " << kBorder * FLong - FBounds.Low.X << " "
       << FBounds.High.Y + kBorder * FLong << ")\">\n";
}

void TShapePainter::Data(const TPictureContours& Contours, const TPoint2D& Move, bool IsClosed) {
  FOut << " d=\"";
  for (const auto& contour : Contours) {
    for (std::size_t i = 0; i < contour.size(); ++i)
      FOut << (i == 0 ? "M" : "L") << contour[i].X + Move.X << " " << contour[i].Y + Move.Y;
    if (IsClosed) FOut << "Z";
  }
  FOut << "\"/>\n";
}

// Lengths within the group are brought into the range of common type sizes, see RectLayoutSvg.
std::string TShapePainter::Close() {
  const double scale = PowerOfTen(FLong) / 1000;
  double widest = 1;
  for (const TLegendRow& row : FLegend) widest = std::max(widest, TextWidth(row.Text) + kTextStart);
  const double em = std::min(kText * FLong, (FWidth - 2 * kBorder * FLong) / widest) / scale;
  FOut << "</g>\n<g transform=\"translate(" << kBorder * FLong << " " << FHeight << ") scale(" << scale
       << ")\" font-family=\"Arial,Helvetica,sans-serif\" font-size=\"" << em << "\" fill=\"#1c1c1c\">\n";
  for (int i = 0; i < Size(FLegend); ++i) {
    const double y = i * kLineHeight * em;
    FOut << "<rect y=\"" << y << "\" width=\"" << em << "\" height=\"" << em << "\" fill=\"" << FLegend[i].Colour
         << "\"/><text x=\"" << kTextStart * em << "\" y=\"" << y + 0.85 * em << "\">" << XmlText(FLegend[i].Text)
         << "</text>\n";
  }
  FOut << "</g>\n</svg>\n";
  return FOut.Take();
}

}  // namespace platenest::detail
