#pragma once

#include <algorithm>

#include "ExactMinkowski.h"
#include "Shapes.h"
#include "platenest/NfpAlgorithmSet/Chip.h"

namespace platenest {

// The convolution of two contours as of one whose second contour is turned by next to nothing, so that no two edges are
// parallel; all vertices against all edges, with exact signs. At a left turn the chip runs against the edge.
class TPlainConvolution {
 public:
  TPlainConvolution(const TPath& A, const TPath& B) {
    Lay(A, B, [](TWide fromIncoming, TWide toOutgoing) { return fromIncoming >= 0 && toOutgoing > 0; });
    Lay(B, A, [](TWide fromIncoming, TWide toOutgoing) { return fromIncoming > 0 && toOutgoing >= 0; });
  }
  TChipList Chips;

 private:
  template <class Holds>
  void Lay(const TPath& A, const TPath& B, Holds InTurn) {
    const TIntPoint zero(0, 0);
    const auto dot = [](const TIntPoint& a, const TIntPoint& b) { return TWide(a.X) * b.X + TWide(a.Y) * b.Y; };
    for (std::size_t i = 0; i < A.size(); ++i) {
      const TIntPoint in = Step(A, i + A.size() - 1);
      const TIntPoint out = Step(A, i);
      const TWide turn = Turn(zero, in, {in.X + out.X, in.Y + out.Y});
      for (std::size_t k = 0; turn != 0 && k < B.size(); ++k) {
        const TIntPoint edge = Step(B, k);
        const auto cross = [&](const TIntPoint& a, const TIntPoint& b) { return TWide(a.X) * b.Y - TWide(a.Y) * b.X; };
        const bool left = turn > 0;
        const TIntPoint& low = left ? in : out;
        const TIntPoint& high = left ? out : in;
        const TWide fromLow = cross(low, edge);
        const TWide toHigh = cross(edge, high);
        if (!InTurn(fromLow, toHigh) || (fromLow == 0 && dot(low, edge) < 0) || (toHigh == 0 && dot(high, edge) < 0))
          continue;
        const TPoint2D start = At(A[i]) + At(B[k]);
        const TPoint2D end = At(A[i]) + At(B[(k + 1) % B.size()]);
        Chips.push_back(left ? TChip{end, start} : TChip{start, end});
      }
    }
  }
  static TIntPoint Step(const TPath& Path, std::size_t Index) {
    const TIntPoint& from = Path[Index % Path.size()];
    const TIntPoint& to = Path[(Index + 1) % Path.size()];
    return {to.X - from.X, to.Y - from.Y};
  }
  static TPoint2D At(const TIntPoint& Point) { return TPathUtils::CreatePoint2D(Point, kPathScale); }
};

inline TPath OuterOf(const TVHPolygon& Part) {
  return PolygonOf(Part).front();
}

}  // namespace platenest
