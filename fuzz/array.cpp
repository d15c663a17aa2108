#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>

#include "Input.h"
#include "platenest/foundation/Errors.h"
#include "platenest/services/arrayInfo.h"

namespace {

using namespace platenest;

// With a liking for numbers that break formulas.
double Number(TInput& In) {
  constexpr double kHostile[] = {0,     1e-300, 1e-13, 1e-7, 0.0009, 1e9,      1e13,
                                 -1e13, 1e14,   1e300, 1e-3, -1e-3,  INFINITY, NAN};
  const int kind = In.Next();
  if (kind < static_cast<int>(std::size(kHostile))) return kHostile[kind];
  if (kind < 32) return AnyDouble(In);
  return static_cast<std::int8_t>(In.Next()) / 4.0;
}

TPoint2D Vector(TInput& In) {
  const double x = Number(In);
  return {x, Number(In)};
}

TVPolyline2D Contour(TInput& Input) {
  TVPolyline2D contour;
  for (int i = Input.Next() % 10; i > 0; --i) contour.push_back(Vector(Input));
  return contour;
}

TVPolyline2D ClosedContour(TInput& Input) {
  TVPolyline2D contour = Contour(Input);
  if (!contour.empty()) contour.push_back(TPoint2D(contour.front()));
  return contour;
}

TPaths SomePaths(TInput& Input) {
  TPaths paths;
  for (int i = Input.Next() % 3; i > 0; --i) {
    paths.emplace_back();
    for (const TPoint2D& point : Contour(Input)) paths.back().push_back(TPathUtils::CreateIntPoint(point, kPathScale));
  }
  return paths;
}

// Long rows are legal and slow; what makes them is refused or tried elsewhere.
bool MakesAShortRow(const TPaths& NFP, const TPoint2D& Step) {
  const TIntRect box = TPathUtils::BoundBox(NFP);
  if (!box.IsValid()) return true;
  const double extents[] = {static_cast<double>(box.Width()) * 1e-5, static_cast<double>(box.Height()) * 1e-5};
  const auto few = [&](double Part) {
    return std::all_of(std::begin(extents), std::end(extents), [&](double Extent) {
      const double copies = Extent / std::fabs(Part);
      return !(copies > 200) || copies > 2e6;
    });
  };
  return few(Step.X) && few(Step.Y) && few(Step.Mag());
}

// A ray at a small angle stays long among the copies of the row; parallel ones are refused.
bool IsShallow(const TPoint2D& A, const TPoint2D& B) {
  const double sine = std::fabs(A.CrossMul(B)) / (A.Mag() * B.Mag());
  return sine > 1e-7 && sine < 0.1;
}

void TryArray(TInput& Input) {
  TPaths nfp = SomePaths(Input);
  const TPoint2D first = Vector(Input);
  const TPoint2D second = Vector(Input);
  const double tol = Number(Input);
  const TVHPolygonList none;
  switch (Input.Next() % 8) {
    case 0:
      if (MakesAShortRow(nfp, first)) TArrayInfoAlgo::CalcBest2ndArrayTrans(nfp, first, tol);
      return;
    case 1:
      if (MakesAShortRow(nfp, {first.Mag(), first.Mag()}) && !IsShallow(first, second))
        TArrayInfoAlgo::Calc2ndArrayTrans(nfp, first, second);
      return;
    case 2: {
      const TPoint2D unit = TArrayInfoAlgo::ToUnit2ndArrayTrans(first, second);
      Require(std::isfinite(unit.X) && std::isfinite(unit.Y));
      return;
    }
    case 3:
      if (MakesAShortRow(nfp, first)) TArrayInfoAlgo::Calc2ndArrayTransXMirror(none, first, nfp, 0, tol > 0);
      return;
    case 4:
      if (MakesAShortRow(nfp, first)) TArrayInfoAlgo::Calc2ndArrayTransY(none, first, nfp, 0, tol > 0);
      return;
    case 5:
      TArrayInfoAlgo::CalcArrayTrans(nfp, Input.Next() % 5, tol > 0);
      return;
    case 6: {
      const TPoint2D best = nfp.empty() ? Origin2D : TArrayInfoAlgo::Calc1stArrayTrans(nfp.front());
      if (MakesAShortRow(nfp, best)) TArrayInfoAlgo::DoCalcArrayInfo(nfp, tol);
      return;
    }
    default:
      TArrayInfoAlgo::CalcNFPWhenMirrorX({TVHPolygon{Contour(Input)}}, tol, nfp);
      return;
  }
}

void TryLabel(TInput& Input) {
  const TVPolyline2DList layer{ClosedContour(Input)};
  TVPolyline2DList inner;
  for (int i = Input.Next() % 3; i > 0; --i) inner.push_back(Contour(Input));
  const TVRect2D label(Vector(Input), Vector(Input));
  bool turned = false;
  TPoint2D place;
  if (TLabelInPartAlgo::CalcLabelPosInPart(layer, inner, label, Number(Input), turned, place))
    Require(std::isfinite(place.X) && std::isfinite(place.Y));
}

void TrySucker(TInput& Input) {
  const TVHPolygon part{ClosedContour(Input), Contour(Input)};
  TPoint2D place;
  if (TSuckerInPartAlgo::CalcSuckerPosInPart(part, Number(Input), place))
    Require(std::isfinite(place.X) && std::isfinite(place.Y));
}

}  // namespace

// Degenerate shapes, vectors and tolerances are answered or refused with an error of the library.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  constexpr std::size_t kMost = 400;
  if (Size > kMost) return 0;
  TInput input(Data, Size, kMost);
  const int kind = input.Next() % 4;
  Try<TNestError>([&] { kind == 0 ? TryLabel(input) : kind == 1 ? TrySucker(input) : TryArray(input); });
  return 0;
}
