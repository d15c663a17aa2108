#include <algorithm>
#include <cmath>
#include <utility>

#include "ArrayInfoRules.h"
#include "UsableShape.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/PolylineTree.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/services/NFP.h"
#include "platenest/services/arrayInfo.h"

namespace platenest {

using namespace detail;

std::atomic<Int64> TLabelInPartAlgo::CalcCount{0};

namespace {

TVRect2D TurnedByQuarter(const TVRect2D& Label) {
  const TPoint2D c = Label.Center();
  const double halfX = Label.Height() / 2;
  const double halfY = Label.Width() / 2;
  return TVRect2D::FromBounds(c.Y + halfY, c.X - halfX, c.Y - halfY, c.X + halfX);
}

TVRect2D BoxOf(const TVPolyline2DList& Lines) {
  TVRect2D box = TVRect2D::InvalidRect;
  for (const TVPolyline2D& line : Lines) box.ExpandInPlace(line.BoundBox());
  return box;
}

// What a search over margins moves between its trials.
struct TLabelSearch {
  TVHPolygonList Parts;
  TVHPolygonList Inner;
  TVRect2D Label;

  TPaths PlacesWith(double Margin) const {
    const TVHPolygonList label{TVHPolygon{TVPolyline2D(Label.Inflate(Margin))}};
    TPaths places;
    TLabelInPartAlgo::CalcNFP(Parts, Inner, label, places);
    return places;
  }
};

struct TLabelPlaces {
  double Margin = kNoPlace;
  TPaths Paths;
};

TLabelPlaces WidestMargin(const TLabelSearch& Search, double Low, double High) {
  const double offset = Low;
  TLabelPlaces best;
  for (int round = 0; round < kMarginRounds; ++round) {
    const double middle = (Low + High) / 2;
    TPaths places = Search.PlacesWith(middle);
    if (places.empty()) {
      High = middle;
      continue;
    }
    Low = middle;
    best = {middle, std::move(places)};
  }
  if (best.Paths.empty()) best = {offset, Search.PlacesWith(offset)};
  return best;
}

// The level of the vertex nearest to Level and that vertex; strictly nearer ones replace it.
template <ClipperLib::cInt TIntPoint::*Across>
TIntPoint NearestVertex(const TPaths& Paths, Int64 Level) {
  TIntPoint best;
  Int64 least = kNoVertexNear;
  for (const TPath& path : Paths) {
    for (const TIntPoint& vertex : path) {
      const Int64 distance = std::abs(vertex.*Across - Level);
      if (distance >= least) continue;
      least = distance;
      best = vertex;
    }
  }
  return best;
}

Int64 MiddleOf(Int64 Low, Int64 High) {
  return Round((static_cast<double>(Low) + static_cast<double>(High)) / 2);
}

}  // namespace

bool TLabelInPartAlgo::CalcLabelPosInPart(const TVPolyline2DList& LayerLines, const TVPolyline2DList& InnerLines,
                                          const TVRect2D& LabelRect, double Offset, bool& DoesRotate,
                                          TPoint2D& TransVec) {
  for (const bool rotate : {false, true}) {
    const TVRect2D label = rotate ? TurnedByQuarter(LabelRect) : LabelRect;
    TPoint2D place;
    if (!(DoCalcLabelPosInPart(LayerLines, InnerLines, label, Offset, place) >= 0)) continue;
    DoesRotate = rotate;
    TransVec = place;
    return true;
  }
  return false;
}

double TLabelInPartAlgo::DoCalcLabelPosInPart(const TVPolyline2DList& LayerLines, const TVPolyline2DList& InnerLines,
                                              const TVRect2D& LabelRect, double Offset, TPoint2D& TransVec) {
  CalcCount.fetch_add(1, std::memory_order_relaxed);
  if (LayerLines.empty() || !LayerLines.front().IsClosed(kClosedTol)) return kNoPlace;
  TLabelSearch search{TVPolyline2DTree(LayerLines).CreateHPolygons(), {}, LabelRect};
  for (const TVPolyline2D& line : InnerLines) search.Inner.push_back(ExpandLine(line, kInnerLineHalfWidth));
  const TVRect2D box = BoxOf(LayerLines);
  const double high = std::min(box.Width(), box.Height()) / 2;
  if (std::fabs(high) < Offset) return kNoPlace;
  const TLabelPlaces best = WidestMargin(search, Offset, high);
  if (best.Paths.empty()) return kNoPlace;
  TransVec = ChoosePosInNFP(best.Paths);
  return best.Margin;
}

TVHPolygon TLabelInPartAlgo::ExpandLine(const TVPolyline2D& line, double delta) {
  if (!IsUsable(line) || !IsUsable(delta))
    throw TArgumentError("[Error] TLabelInPartAlgo.ExpandLine: a number is not finite or too large");
  TClipperOffset offset(kLineMiterLimit, kLineArcTol);
  offset.AddPath(TPathUtils::CreatePath(line, kPathScale), ClipperLib::jtSquare, ClipperLib::etClosedLine);
  TPaths paths;
  offset.Execute(paths, static_cast<double>(Round(delta * kPathScale)));
  if (paths.empty()) throw TNestError("[ERROR] TLabelInPartAlgo.SetOpenLineClosed: 图形计算错误");
  return TPathUtils::CreateHPolygon(paths, kPathScale);
}

void TLabelInPartAlgo::CalcNFP(const TVHPolygonList& parts, const TVHPolygonList& inner, const TVHPolygonList& label,
                               TPaths& NFP) {
  const TNFP fits = TNFPCalculator::CalcNFP(label, parts, true, ntConcaveHull, "", "");
  TPaths region = fits.IsEmpty() ? TPaths() : *fits.NFP;
  if (inner.empty()) {
    NFP = std::move(region);
    return;
  }
  const TNFP blocked = TNFPCalculator::CalcNFP(label, inner, false, ntConcaveHull, "", "");
  TClipper clipper;
  clipper.AddPaths(region, ClipperLib::ptSubject, true);
  clipper.AddPaths(*blocked.NFP, ClipperLib::ptClip, true);
  clipper.Execute(ClipperLib::ctDifference, NFP, ClipperLib::pftNonZero, ClipperLib::pftNonZero);
}

TPoint2D TLabelInPartAlgo::ChoosePosInNFP(const TPaths& NFP) {
  const TIntRect box = TPathUtils::BoundBox(NFP);
  if (!box.IsValid()) return Origin2D;
  TIntPoint place;
  if (box.Height() <= box.Width()) {
    const Int64 x = MiddleOf(box.Left, box.Right);
    const std::vector<Int64> crossings = TPathUtils::CalcYByX(NFP, x, true, 0);
    place = crossings.empty() ? NearestVertex<&TIntPoint::X>(NFP, x) : TPathUtils::CreateIntPoint(x, crossings.front());
  } else {
    const Int64 y = MiddleOf(box.Bottom, box.Top);
    const std::vector<Int64> crossings = TPathUtils::CalcXByY(NFP, y, true, 0);
    place = crossings.empty() ? NearestVertex<&TIntPoint::Y>(NFP, y) : TPathUtils::CreateIntPoint(crossings.front(), y);
  }
  return TPathUtils::CreatePoint2D(place, kPathScale);
}

}  // namespace platenest
