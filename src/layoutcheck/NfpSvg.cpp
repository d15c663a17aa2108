#include "platenest/layoutcheck/NfpSvg.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "ShapePainter.h"
#include "XmlText.h"
#include "platenest/foundation/Types.h"
#include "platenest/layoutcheck/Svg.h"

namespace platenest {

namespace {

using detail::TBounds;
using detail::XmlText;

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
        FPainter(BoundsOf(), Legend()),
        FOut(FPainter.Out()),
        FFixed(XmlText(Picture.FixedId)),
        FMoving(XmlText(Picture.MovingId)) {}

  std::string Paint() {
    const std::string pair = FPicture.MovingId + (FPicture.IsInside ? " inside " : " around ") + FPicture.FixedId;
    FPainter.Open(FPicture.Title.empty() ? pair : FPicture.Title + ": " + pair,
                  (FPicture.IsInside ? "Inner-fit region of " : "No-fit polygon of ") + pair + ": " +
                      std::string(Claim()) + ". " + std::to_string(FPlaces.size()) +
                      " places of the part are outlined.",
                  FPicture.Units);
    Shapes();
    return FPainter.Close();
  }

 private:
  TBounds BoundsOf() const {
    TBounds bounds;
    bounds.Add(FPicture.Fixed);
    bounds.Add(FPicture.Region);
    for (const TPoint2D& place : FPlaces) bounds.Add(FPicture.Moving, place);
    if (FPlaces.empty()) bounds.Add(FPicture.Moving);
    return bounds;
  }

  std::vector<detail::TLegendRow> Legend() const {
    return {{KindColour(detail::kPartColour), "fixed: " + FPicture.FixedId},
            {RegionColour(), (FPicture.IsInside ? "region: " : "polygon: ") + std::string(Claim())},
            {KindColour(detail::kMovingColour), "moving: " + FPicture.MovingId + ", dots: its reference point"}};
  }

  std::string_view Claim() const {
    if (!FPicture.IsInside) return "the reference point may stand anywhere but inside";
    return FPicture.Region.empty() ? "no place" : "the reference point may stand anywhere inside";
  }

  std::string RegionColour() const {
    return KindColour(FPicture.IsInside ? detail::kAllowedColour : detail::kForbiddenColour);
  }

  void Region(bool IsFilled) {
    if (FPicture.Region.empty()) return;
    FOut << "<path data-region=\"" << (FPicture.IsInside ? "inside" : "outside") << "\" fill=\"";
    if (IsFilled)
      FOut << RegionColour() << "\" fill-opacity=\"0.5\" fill-rule=\"evenodd\"";
    else
      FOut << "none\" stroke=\"" << RegionColour() << "\" stroke-width=\"" << 1.6 * FPainter.Line()
           << "\" stroke-linejoin=\"round\"";
    FPainter.Data(FPicture.Region);
  }

  // A polygon lies below the fixed part, a region on the plate; its border is always on top.
  void Shapes() {
    if (!FPicture.IsInside) Region(true);
    FOut << "<path data-part=\"" << FFixed << "\" fill=\"" << KindColour(detail::kPartColour)
         << "\" fill-rule=\"evenodd\" stroke=\"#1c1c1c\" stroke-width=\"" << FPainter.Line() << "\"";
    FPainter.Data(FPicture.Fixed);
    if (FPicture.IsInside) Region(true);
    Region(false);
    for (const TPoint2D& place : FPlaces) {
      FOut << "<path data-part=\"" << FMoving << "\" fill=\"none\" stroke=\"" << KindColour(detail::kMovingColour)
           << "\" stroke-width=\"" << FPainter.Line() << "\" stroke-linejoin=\"round\"";
      FPainter.Data(FPicture.Moving, place);
      FOut << "<circle cx=\"" << place.X << "\" cy=\"" << place.Y << "\" r=\"" << FPainter.Dot() << "\" fill=\""
           << KindColour(detail::kMovingColour) << "\"/>\n";
    }
  }

  const TNfpPicture& FPicture;
  const std::vector<TPoint2D> FPlaces;
  detail::TShapePainter FPainter;
  detail::TWriter& FOut;
  const std::string FFixed;
  const std::string FMoving;
};

}  // namespace

std::string NfpSvg(const TNfpPicture& Picture) {
  return TNfpPainter(Picture).Paint();
}

}  // namespace platenest
