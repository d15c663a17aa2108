// Asks the calculator for shapes read from the input: coordinates from tiny to huge and not finite at all, needles,
// crossings, empty shapes and lists. Whatever comes, it answers or raises an error of the library, and leaves the state
// of the thread and its arguments as they were.
#include <cfloat>
#include <cmath>
#include <cstring>

#include "Input.h"
#include "platenest/NfpAlgorithmSet/VectorGraph.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Random.h"
#include "platenest/services/NFP.h"

namespace {

using namespace platenest;

constexpr std::size_t kMaxBytes = 768;
constexpr int kMostPoints = 24;

double OddCoordinate(int Which) {
  constexpr double kOdd[] = {NAN,    INFINITY, -INFINITY, DBL_MAX, DBL_TRUE_MIN, 1e13, -1e13, 1.0000001e13,
                             4.6e13, 9e12,     -0.0,      1e-12,   1e-6,         5e-6, 1e-3,  9.99e-4};
  return kOdd[Which % std::size(kOdd)];
}

// On a coarse grid as a rule, so that edges meet, overlap and run along each other.
double Coordinate(TInput& In, double Scale) {
  const int kind = In.Next();
  if (kind < 176) return Scale * (kind % 16);
  if (kind < 240) return Scale * (kind % 16 + 1e-5 * (In.Next() - 128));
  return OddCoordinate(In.Next());
}

TVPolyline2D ReadContour(TInput& In, double Scale) {
  TVPolyline2D contour;
  const int count = In.Next() % kMostPoints;
  for (int i = 0; i < count; ++i) {
    const double x = Coordinate(In, Scale);
    contour.push_back({x, Coordinate(In, Scale)});
  }
  return contour;
}

TVHPolygonList ReadParts(TInput& In) {
  constexpr double kScales[] = {1, 1, 1, 0.25, 1000, 1e-4, 1e9, 7.3};
  const double scale = kScales[In.Next() % std::size(kScales)];
  TVHPolygonList parts;
  const int count = In.Next() % 8;
  for (int i = 0; i < (count == 0 ? 0 : 1 + count / 6); ++i) {
    TVHPolygon& part = parts.emplace_back();
    const int contours = In.Next() % 8;
    for (int k = 0; k < (contours < 6 ? std::min(contours, 1) : contours - 4); ++k)
      part.push_back(ReadContour(In, scale));
  }
  return parts;
}

bool AreSame(const TVHPolygonList& A, const TVHPolygonList& B) {
  const auto sameContour = [](const TVPolyline2D& P, const TVPolyline2D& Q) {
    return P.size() == Q.size() && (P.empty() || std::memcmp(P.data(), Q.data(), P.size() * sizeof(TPoint2D)) == 0);
  };
  return std::equal(A.begin(), A.end(), B.begin(), B.end(), [&](const TVHPolygon& P, const TVHPolygon& Q) {
    return std::equal(P.begin(), P.end(), Q.begin(), Q.end(), sameContour);
  });
}

void Ask(const TVHPolygonList& Sub, const TVHPolygonList& Obj, int Mode) {
  const bool isInside = Mode % 2 == 1;
  const auto type = static_cast<TNFPType>(Mode / 2 % 5);
  Try<TNestError>([&] {
    const TNFP nfp = Mode % 16 < 12 ? TNFPCalculator::CalcNFP(Sub, Obj, isInside, type, "", "")
                                    : TNFPCalculator::CalcNFPUI(Sub, Obj, isInside, type, "", "");
    Require(isInside || type == ntNone || !nfp.IsEmpty());
    for (const TPath& path : *nfp.NFP) Require(path.size() >= 3);
  });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const TRandomScope seed(1);
  TInput in(data, size, kMaxBytes);
  const int mode = in.Next();
  const TVHPolygonList sub = ReadParts(in);
  const TVHPolygonList obj = ReadParts(in);
  const TVHPolygonList subBefore = sub;
  const TVHPolygonList objBefore = obj;
  Ask(sub, obj, mode);
  Require(BoldPointPrec == 0);
  Require(AreSame(sub, subBefore) && AreSame(obj, objBefore));
  return 0;
}
