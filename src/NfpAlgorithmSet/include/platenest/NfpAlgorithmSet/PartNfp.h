#pragma once

#include <optional>
#include <span>

#include "platenest/NfpAlgorithmSet/KineticLoop.h"
#include "platenest/NfpAlgorithmSet/NfpTypes.h"
#include "platenest/foundation/Export.h"
#include "platenest/foundation/Paths.h"
#include "platenest/foundation/Polyline.h"

// No-fit polygons and inner-fit regions of shapes: the translations of a dynamic (moving) shape, from its own origin,
// against a static one. Results are paths at kPathScale, filled where their winding is not zero: outlines run
// counter-clockwise, what is free inside them clockwise. Outside, the inside of the paths forbids: there the shapes
// overlap, on the border they touch. Inside, the paths bound the translations at which the dynamic shape fits.
//
// Coordinates must be finite and at most kMaxNfpCoordinate in size; nothing here checks that, TNFPCalculator does.
// One object for one thread; separate objects on separate threads are independent. What an outer pair draws by chance
// once its convolution has given up comes from Random of the calling thread, so a host that wants equal answers seeds
// it. Cost: that of the convolution, see KineticConvolution.h; pairs of rectangles cost next to nothing.
namespace platenest {

// In drawing units: what may be added, negated and grown without leaving the range of integer paths.
inline constexpr double kMaxNfpCoordinate = 1e13;

class PLATENEST_API TPartNFP {
 public:
  explicit TPartNFP(TNFPType RequiredType);

  // A loop of the contour, with the area a if that is known; within 1e-12 of 0 it is computed. Fails, and may shorten
  // APoly by a repeated last point, as TKMPLoop::Initialize does.
  static TKMPLoop GetKMPLoop(TVPolyline2D& APoly, double a);
  // The negated points: the dynamic shape as the convolution needs it. Area and direction stay.
  static TVPolyline2D GetSymmetry(const TVPolyline2D& Poly);

  // For boxes; one path from the top left corner counter-clockwise. The inner one is empty if the part is larger by
  // 1e-6 or more in width or height. An exact fit (within 1e-5) becomes a region of one path unit, so that it survives
  // clipping.
  static void CalcRectInnerNfp(const TVRect2D& plate, const TVRect2D& part, TPaths& NFPs);
  static void CalcRectOuterNfp(const TVRect2D& plate, const TVRect2D& part, TPaths& NFPs);

  // The pair kernel, on single contours; a clockwise one is a cavity. With putInside the one that is not a cavity goes
  // inside the other. The result tells the quality of the paths: ntComplete also where there are none.
  //
  // Fewer than three points: no paths. Two rectangles along the axes, and any shape in such a cavity, are answered from
  // their boxes. An outer pair always gets paths: where the convolution gives up, the static contour is disturbed a
  // little, then replaced by its hull, by the box of that, and last both by their boxes. These answers are reached with
  // a coarser BoldPointPrec, which is 0 again on every way out. An inner pair that gives up is tried once more with the
  // hull of the dynamic contour and is empty then.
  //
  // Known limits of inner pairs: a cavity of any other form must be larger by 0.0002 in width and height than what goes
  // in, so a fit without play is found in rectangles only; and the square of its area over its box must be above 0.8
  // of the same measure of what goes in, which refuses a bar that fits into one arm of a thin L. Regions that are
  // narrower than two path units in the mean are dropped.
  //
  // May drop a repeated last point of the contours. Raises TNestError for a contour that no loop can be made of.
  TNFPType CalcNfp(TVPolyline2D& staticPoly, TVPolyline2D& dynamicPoly, bool putInside, TPaths& NFPs);

  // CalcNfp, independent of what this object did before.
  TNFPType Nfp(TVPolyline2D& staticPoly, TVPolyline2D& dynamicPoly, bool putInside, TPaths& NFPs);

  // For shapes with holes. Outside, the places where one part stands inside a hole of the other are free: they lie as
  // clockwise paths beside the outline, not joined with it, so read the paths under non-zero fill. The quality is that
  // of the outlines alone, and never told to be lower than required. With putInside see PlateNfp.
  //
  // Works on its arguments: they are given the directions that the kernel needs, and where ntConvexHull is required and
  // the outlines are heavy, they are replaced by hulls; a static part that is a plate is never, since its hull would be
  // larger than the plate. A type above HighestNFPType is lowered to it. A part without contours: no paths.
  void Nfp(TVHPolygon& staticPart, TVHPolygon& dynamicPart, bool putInside, TPaths& NFPs);

  // Where the part fits inside the outer contour of the plate and off its holes. The plate must run clockwise with
  // counter-clockwise holes, the part counter-clockwise. Holes of the part count: a hole of the plate may stand in one.
  // In plates with more than 50 contours the work per hole is watched, and once the outlines of the forbidden places
  // reach 0.38 drawing units (0.16 below ntComplete), which is after the first hole as a rule, the remaining holes are
  // asked for at ntConvexHull only.
  void PlateNfp(TVHPolygon& plate, TVHPolygon& part, TPaths& NFPs);

  // The quality that Nfp on two parts has delivered; the one required where nothing could be asked.
  TNFPType Returned() const { return _returned; }

 private:
  // Which area, and which loop, is that of the call before.
  enum TKept { kNothing = 0, kStatic = 1, kDynamic = 2 };
  struct TPair;

  void ForgetPair();
  void KeepLoops();
  TPair MakePair(TVPolyline2D& Static, TVPolyline2D& Dynamic);
  const TKMPLoop& StaticLoop(TPair& Pair);
  const TKMPLoop& DynamicLoop(const TPair& Pair);

  TNFPType OuterNfp(TPair& Pair, TPaths& NFPs);
  TNFPType InnerNfp(TPair& Pair, TPaths& NFPs);
  int ConvolveInside(TPair& Pair, TPaths& NFPs);
  int PlainNfp(TVPolyline2D& Static, const TVPolyline2D& Dynamic, bool PutInside, TPaths& NFPs) const;
  int ThinnedNfp(const TPair& Pair, TPaths& NFPs) const;
  int ZoomedNfp(const TPair& Pair, TPaths& NFPs) const;

  bool HullHeavyParts(TVHPolygon& Static, TVHPolygon& Dynamic, bool PutInside) const;
  void ThinForPlate(const TVHPolygon& Plate, TVHPolygon& Part) const;
  void OutlineNfp(TVHPolygon& Static, TVHPolygon& Dynamic, TPaths& NFPs);
  void HoleOfPlateNfp(TVPolyline2D& Hole, TVHPolygon& Part, TPaths& NFPs);
  void SubtractHoles(TVHPolygon& Plate, TVHPolygon& Part, TPaths& NFPs);

  std::optional<TKMPLoop> FStaticLoop;  // of the pair in hand
  std::optional<TKMPLoop> FDynamicLoop;
  std::optional<TKMPLoop> _dyLoopCache;  // kept over the holes of a part
  std::optional<TKMPLoop> _stLoopCache;
  double _dyArea = 0;  // kept with them
  double _stArea = 0;
  TKept _calcArea = kNothing;
  TNFPType _required;
  TNFPType _returned = ntNone;
};

// Replaces the outer contour by its convex hull, counter-clockwise; holes stay. Nothing happens to a part without
// contours.
PLATENEST_API void ConvexHullInPlace(TVHPolygon& part);

// No-fit polygons of lists of parts that stay together: all dynamic parts move as one, from one origin. Outside, a
// place is forbidden if any dynamic part overlaps any static one. Inside, each dynamic part must fit into one of the
// static ones; several static parts are separate plates. The type of a single pair is the delivered one; of several
// pairs it starts at the required type and only rises, so it does not tell what the worst pair got. Fails as TPartNFP.
class PLATENEST_API TPartsPackNFP {
 public:
  // May orient the parts and take hulls of them in place.
  static TNFP Nfp(TVHPolygonList& staticParts, TVHPolygonList& dynamicParts, bool putInside, TNFPType RequiredType);
  // On copies; the arguments stay unchanged.
  TNFP CalcNFP(std::span<const TVHPolygon> dynamicParts, std::span<const TVHPolygon> staticParts, bool putInside,
               TNFPType RequiredType) const;
};

}  // namespace platenest
