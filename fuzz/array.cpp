#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iterator>

#include "platenest/foundation/Errors.h"
#include "platenest/services/arrayInfo.h"

namespace {

using namespace platenest;

// Takes numbers off the input, with a liking for those that break formulas; 0 once it is used up.
class TInput {
 public:
  TInput(const std::uint8_t* Data, std::size_t Size) : FData(Data), FSize(Size) {}

  std::uint8_t Byte() {
    if (FSize == 0) return 0;
    --FSize;
    return *FData++;
  }
  double Number() {
    constexpr double kHostile[] = {0,     1e-300, 1e-13, 1e-7, 0.0009, 1e9,      1e13,
                                   -1e13, 1e14,   1e300, 1e-3, -1e-3,  INFINITY, NAN};
    const std::uint8_t kind = Byte();
    if (kind < std::size(kHostile)) return kHostile[kind];
    if (kind < 32) return Raw();
    return static_cast<std::int8_t>(Byte()) / 4.0;
  }
  TPoint2D Vector() {
    const double x = Number();
    return {x, Number()};
  }
  std::size_t Left() const { return FSize; }

 private:
  double Raw() {
    std::uint64_t bits = 0;
    for (int i = 0; i < 8; ++i) bits = bits << 8 | Byte();
    return std::bit_cast<double>(bits);
  }

  const std::uint8_t* FData;
  std::size_t FSize;
};

TVPolyline2D Contour(TInput& Input) {
  TVPolyline2D contour;
  for (int i = Input.Byte() % 10; i > 0; --i) contour.push_back(Input.Vector());
  return contour;
}

TVPolyline2D ClosedContour(TInput& Input) {
  TVPolyline2D contour = Contour(Input);
  if (!contour.empty()) contour.push_back(TPoint2D(contour.front()));
  return contour;
}

TPaths SomePaths(TInput& Input) {
  TPaths paths;
  for (int i = Input.Byte() % 3; i > 0; --i) {
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

void Require(bool Condition) {
  if (!Condition) std::abort();
}

void TryArray(TInput& Input) {
  TPaths nfp = SomePaths(Input);
  const TPoint2D first = Input.Vector();
  const TPoint2D second = Input.Vector();
  const double tol = Input.Number();
  const TVHPolygonList none;
  switch (Input.Byte() % 8) {
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
      TArrayInfoAlgo::CalcArrayTrans(nfp, Input.Byte() % 5, tol > 0);
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
  for (int i = Input.Byte() % 3; i > 0; --i) inner.push_back(Contour(Input));
  const TVRect2D label(Input.Vector(), Input.Vector());
  bool turned = false;
  TPoint2D place;
  if (TLabelInPartAlgo::CalcLabelPosInPart(layer, inner, label, Input.Number(), turned, place))
    Require(std::isfinite(place.X) && std::isfinite(place.Y));
}

void TrySucker(TInput& Input) {
  const TVHPolygon part{ClosedContour(Input), Contour(Input)};
  TPoint2D place;
  if (TSuckerInPartAlgo::CalcSuckerPosInPart(part, Input.Number(), place))
    Require(std::isfinite(place.X) && std::isfinite(place.Y));
}

}  // namespace

// Degenerate shapes, vectors and tolerances are answered or refused with an error of the library.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size) {
  if (Size > 400) return 0;
  TInput input(Data, Size);
  try {
    switch (input.Byte() % 4) {
      case 0:
        TryLabel(input);
        break;
      case 1:
        TrySucker(input);
        break;
      default:
        TryArray(input);
    }
  } catch (const TNestError&) {
  }
  return 0;
}
