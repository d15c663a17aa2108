#include "platenest/layoutcheck/PartSvg.h"

#include <cmath>
#include <cstdlib>

#include "ShapePainter.h"
#include "XmlText.h"
#include "platenest/foundation/Types.h"
#include "platenest/layoutcheck/Svg.h"

namespace platenest {

namespace {

using detail::TBounds;
using detail::XmlText;

constexpr int kMostSteps = 3;     // of a vector to a neighbour that is drawn
constexpr double kNearby = 0.25;  // how far around the part neighbours are drawn, as a share of its box
constexpr int kMarkColour = 5;

TPictureContours Rectangle(const TPlacedBox& Box, double Margin) {
  const double left = Box.Left - Margin;
  const double bottom = Box.Bottom - Margin;
  const double right = Box.Right + Margin;
  const double top = Box.Top + Margin;
  return {{{left, bottom}, {right, bottom}, {right, top}, {left, top}}};
}

class TPartPainter {
 public:
  explicit TPartPainter(const TPartPicture& Picture)
      : FPicture(Picture), FPainter(BoundsOf(), Legend()), FOut(FPainter.Out()) {}

  std::string Paint() {
    std::string description = "Part " + FPicture.PartId;
    for (const std::string& remark : FPicture.Remarks) description += "; " + remark;
    FPainter.Open(FPicture.Title.empty() ? FPicture.PartId : FPicture.Title + ": " + FPicture.PartId, description + ".",
                  FPicture.Units);
    for (const TPoint2D& move : Neighbours()) Part(move, true);
    Part({0, 0}, false);
    Lines();
    if (FPicture.Lattice) Cell(*FPicture.Lattice);
    if (FPicture.Label) Label(*FPicture.Label);
    if (FPicture.Disc) Disc(*FPicture.Disc);
    return FPainter.Close();
  }

 private:
  TBounds PartBounds() const {
    TBounds part;
    part.Add(FPicture.Part);
    return part;
  }

  std::vector<TPoint2D> Neighbours() const {
    std::vector<TPoint2D> moves;
    if (!FPicture.Lattice) return moves;
    const TPoint2D reach = PartBounds().Extent() * (1 + kNearby);
    for (int j = -kMostSteps; j <= kMostSteps; ++j) {
      for (int i = -kMostSteps; i <= kMostSteps; ++i) {
        const TPoint2D move = FPicture.Lattice->First * i + FPicture.Lattice->Second * j;
        const bool isNear = std::fabs(move.X) < reach.X && std::fabs(move.Y) < reach.Y;
        const bool isNext = std::abs(i) + std::abs(j) == 1;
        if ((i != 0 || j != 0) && (isNear || isNext)) moves.push_back(move);
      }
    }
    return moves;
  }

  TBounds BoundsOf() const {
    TBounds bounds;
    bounds.Add(FPicture.Part);
    for (const TPoint2D& move : Neighbours()) bounds.Add(FPicture.Part, move);
    bounds.Add(FPicture.Lines);
    if (FPicture.Label) bounds.Add(Rectangle(FPicture.Label->Box, FPicture.Label->Margin));
    if (FPicture.Disc) {
      const auto& [center, radius] = *FPicture.Disc;
      bounds.Add(Rectangle({center.X, center.Y, center.X, center.Y}, radius));
    }
    return bounds;
  }

  std::vector<detail::TLegendRow> Legend() const {
    std::vector<detail::TLegendRow> rows{{KindColour(detail::kPartColour), "part: " + FPicture.PartId}};
    if (!FPicture.Lines.empty()) rows.push_back({KindColour(detail::kMovingColour), "inner lines"});
    for (const std::string& remark : FPicture.Remarks) rows.push_back({KindColour(kMarkColour), remark});
    return rows;
  }

  void Part(const TPoint2D& Move, bool IsNeighbour) {
    FOut << "<path data-part=\"" << XmlText(FPicture.PartId) << "\" fill=\"" << KindColour(detail::kPartColour)
         << "\" fill-rule=\"evenodd\" stroke=\"#1c1c1c\" stroke-width=\"" << FPainter.Line() << "\"";
    if (IsNeighbour) FOut << " opacity=\"0.4\"";
    FPainter.Data(FPicture.Part, Move);
  }

  // The beginning of a path element that is only stroked.
  void Stroked(std::string_view Data, const std::string& Colour, bool IsDashed) {
    const double line = 1.6 * FPainter.Line();
    FOut << "<path data-" << Data << "=\"\" fill=\"none\" stroke=\"" << Colour << "\" stroke-width=\"" << line
         << "\" stroke-linejoin=\"round\"";
    if (IsDashed) FOut << " stroke-dasharray=\"" << 4 * line << " " << 3 * line << "\"";
  }

  void Lines() {
    if (FPicture.Lines.empty()) return;
    Stroked("lines", KindColour(detail::kMovingColour), false);
    FPainter.Data(FPicture.Lines, {0, 0}, false);
  }

  void Cell(const TLattice& Lattice) {
    const TPoint2D start = PartBounds().Low;
    Stroked("cell", KindColour(kMarkColour), true);
    FPainter.Data({{start, start + Lattice.First, start + Lattice.First + Lattice.Second, start + Lattice.Second}});
    Stroked("vectors", KindColour(kMarkColour), false);
    FPainter.Data({{start + Lattice.First, start, start + Lattice.Second}}, {0, 0}, false);
    Dot(start + Lattice.First);
    Dot(start + Lattice.Second);
  }

  void Dot(const TPoint2D& Place) {
    FOut << "<circle cx=\"" << Place.X << "\" cy=\"" << Place.Y << "\" r=\"" << 1.5 * FPainter.Dot() << "\" fill=\""
         << KindColour(kMarkColour) << "\"/>\n";
  }

  void Label(const TPictureLabel& Label) {
    FOut << "<path data-label=\"\" fill=\"" << KindColour(kMarkColour) << "\" fill-opacity=\"0.7\"";
    FPainter.Data(Rectangle(Label.Box, 0));
    Stroked("margin", KindColour(kMarkColour), true);
    FPainter.Data(Rectangle(Label.Box, Label.Margin));
  }

  void Disc(const TPictureDisc& Disc) {
    FOut << "<circle data-sucker=\"\" cx=\"" << Disc.Center.X << "\" cy=\"" << Disc.Center.Y << "\" r=\"" << Disc.Radius
         << "\" fill=\"" << KindColour(kMarkColour) << "\" fill-opacity=\"0.7\" stroke=\"#1c1c1c\""
         << " stroke-width=\"" << FPainter.Line() << "\"/>\n";
    Dot(Disc.Center);
  }

  const TPartPicture& FPicture;
  detail::TShapePainter FPainter;
  detail::TWriter& FOut;
};

}  // namespace

std::string PartSvg(const TPartPicture& Picture) {
  return TPartPainter(Picture).Paint();
}

}  // namespace platenest
