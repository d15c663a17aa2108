#pragma once

#include <array>

#include "Region.h"

// Shapes to try no-fit polygons with. All are simple polygons with the outer contour counter-clockwise and holes
// clockwise, in drawing units; every coordinate is a whole number of path units. Equal arguments give equal shapes; the
// generator of the calling thread is left as it was.
namespace platenest {

enum class TShapeKind {
  Convex,
  Star,          // one radius for each direction, every second one shorter
  Comb,          // teeth on a bar, on the unit grid
  Staircase,     // rectilinear, on the unit grid
  Gear,          // many equal teeth on a circle
  Spiral,        // a band of one and more turns
  NearParallel,  // long edges broken into pieces that turn by 1e-8 to 1e-6 radians; seeds 2k and 2k+1 share directions
  Slit,          // a box with cuts from one path unit wide
  Holed,         // round outside, star-shaped holes
  LShape,        // on the unit grid
  UShape         // on the unit grid
};

inline constexpr std::array kShapeKinds = {TShapeKind::Convex,       TShapeKind::Star,  TShapeKind::Comb,
                                           TShapeKind::Staircase,    TShapeKind::Gear,  TShapeKind::Spiral,
                                           TShapeKind::NearParallel, TShapeKind::Slit,  TShapeKind::Holed,
                                           TShapeKind::LShape,       TShapeKind::UShape};

const char* NameOf(TShapeKind Kind);

// Edges is a wish: kinds of a fixed form ignore it, others come near it; at least 8 are made. Size is about the
// diameter, from 1 to 1000; shapes on the unit grid take at least the units that their edges need.
TVHPolygon MakeShape(TShapeKind Kind, int Edges, double Size, unsigned Seed);

struct TShapePair {
  TVHPolygon Static;
  TVHPolygon Dynamic;
  TShapeKind StaticKind = TShapeKind::Convex;
  TShapeKind DynamicKind = TShapeKind::Convex;
};

// Any two kinds with up to MostEdges edges each; sizes differ by a factor of up to 5.
TShapePair MakePair(int MostEdges, unsigned Seed);

// A plate whose only hole is the part, moved to Place. With Grow above 0 the hole is larger by about Grow all round,
// and slits of the part that are narrower than twice that close.
struct TJigsaw {
  TVHPolygon Part;
  TVHPolygon Plate;
  TPoint2D Place;
};

TJigsaw MakeJigsaw(TShapeKind Kind, int Edges, double Size, double Grow, unsigned Seed);

}  // namespace platenest
