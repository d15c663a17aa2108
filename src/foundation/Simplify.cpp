#include "platenest/foundation/Simplify.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "SimplifyCore.h"

namespace platenest {

namespace detail {

namespace {

constexpr Int64 kTestsPerPoint = 32;  // times log2 n, before pieces are cut at their middle

class TSimplifier {
 public:
  TSimplifier(std::span<const TPoint2D> Points, double Tol) : FPoints(Points), FSquareTol(Tol < 0 ? -1 : Tol * Tol) {
    FResult.Kept.assign(Points.size(), 0);
    const auto count = static_cast<Int64>(Points.size());
    FTestsLimit = kTestsPerPoint * count * std::bit_width(Points.size());
  }

  void KeepOpen() {
    const std::size_t last = FPoints.size() - 1;
    Keep(0);
    Keep(last);
    Split(0, last);
  }

  void KeepClosed() {
    const std::size_t far = FarthestFrom(0);
    const std::size_t opposite = FarthestFrom(far);
    std::size_t anchors[] = {0, std::min(far, opposite), std::max(far, opposite), FPoints.size()};
    for (const std::size_t anchor : {far, opposite}) Keep(anchor);
    Keep(0);
    for (int i = 0; i < 3; ++i) Split(anchors[i], anchors[i + 1]);
    while (std::ranges::count(FResult.Kept, 1) < 3) Keep(FarthestUnkept(far));
  }

  TKeptPoints Take() { return std::move(FResult); }

 private:
  struct TFarthest {
    std::size_t Index = 0;
    double Square = -1;
  };

  // The chord from one point to another, for squared distances of points to it.
  struct TChord {
    TChord(const TPoint2D& From, const TPoint2D& To) : Start(From), Direction(To - From) {
      const double square = Direction.DotMul(Direction);
      Inverse = square > 0 ? 1 / square : 0;
    }
    double SquareTo(const TPoint2D& Point) const {
      const TPoint2D offset = Point - Start;
      const double t = std::clamp(offset.DotMul(Direction) * Inverse, 0.0, 1.0);
      const TPoint2D distance = offset - Direction * t;
      return distance.DotMul(distance);
    }
    TPoint2D Start;
    TPoint2D Direction;
    double Inverse;
  };

  // Index FPoints.size() is the first point again.
  const TPoint2D& At(std::size_t Index) const { return FPoints[Index == FPoints.size() ? 0 : Index]; }
  void Keep(std::size_t Index) { FResult.Kept[Index] = 1; }

  std::size_t FarthestFrom(std::size_t Center) const {
    TFarthest best{Center, 0};
    for (std::size_t i = 0; i < FPoints.size(); ++i) {
      const TPoint2D offset = FPoints[i] - FPoints[Center];
      if (const double square = offset.DotMul(offset); square > best.Square) best = {i, square};
    }
    return best.Index;
  }

  std::size_t FarthestUnkept(std::size_t Opposite) const {
    const TChord chord(FPoints[0], FPoints[Opposite]);
    TFarthest best;
    for (std::size_t i = 0; i < FPoints.size(); ++i) {
      if (FResult.Kept[i]) continue;
      if (const double square = chord.SquareTo(FPoints[i]); !(square <= best.Square)) best = {i, square};
    }
    return best.Index;
  }

  TFarthest FarthestBetween(std::size_t First, std::size_t Last) {
    const TChord chord(At(First), At(Last));
    TFarthest best;
    for (std::size_t i = First + 1; i < Last; ++i)
      if (const double square = chord.SquareTo(FPoints[i]); square > best.Square) best = {i, square};
    FResult.DistanceTests += static_cast<Int64>(Last - First);
    return best;
  }

  void Split(std::size_t First, std::size_t Last) {
    FPieces.push_back({First, Last});
    while (!FPieces.empty()) {
      const auto [first, last] = FPieces.back();
      FPieces.pop_back();
      if (last < first + 2) continue;
      const TFarthest farthest = FarthestBetween(first, last);
      if (!(farthest.Square > 0) || farthest.Square <= FSquareTol) continue;
      const bool isCheap = FResult.DistanceTests <= FTestsLimit;
      const std::size_t middle = isCheap ? farthest.Index : first + (last - first) / 2;
      Keep(middle);
      FPieces.push_back({middle, last});
      FPieces.push_back({first, middle});
    }
  }

  std::span<const TPoint2D> FPoints;
  double FSquareTol;
  Int64 FTestsLimit = 0;
  std::vector<std::pair<std::size_t, std::size_t>> FPieces;
  TKeptPoints FResult;
};

}  // namespace

TKeptPoints KeepPoints(std::span<const TPoint2D> Points, double Tol, bool Closed) {
  TSimplifier simplifier(Points, Tol);
  if (Closed)
    simplifier.KeepClosed();
  else
    simplifier.KeepOpen();
  return simplifier.Take();
}

}  // namespace detail

namespace {

// Appends the kept ones of Points to Result; with Closed also the closing point if the list has one.
template <class List>
void AppendKept(const List& Points, const std::vector<std::uint8_t>& Kept, List& Result) {
  const std::size_t closing = Points.size() - Kept.size();
  Result.reserve(static_cast<std::size_t>(std::ranges::count(Kept, 1)) + closing);
  for (std::size_t i = 0; i < Kept.size(); ++i)
    if (Kept[i]) Result.push_back(Points[i]);
  if (closing > 0) Result.push_back(Points.back());
}

// Points without a repeated closing point, if they are a contour.
template <class List>
std::size_t CountToSimplify(const List& Points, bool Closed) {
  return Closed && Points.size() > 1 && Points.front() == Points.back() ? Points.size() - 1 : Points.size();
}

}  // namespace

TVPoint2DList DPSimplify(const TVPoint2DList& Points, double Tol, bool Flag) {
  const std::size_t count = CountToSimplify(Points, Flag);
  if (count < 3) return Points;
  const auto kept = detail::KeepPoints(std::span(Points.data(), count), Tol, Flag).Kept;
  TVPoint2DList result;
  AppendKept(Points, kept, result);
  return result;
}

TPath DPSimplify(const TPath& Points, double Tol, bool Flag) {
  const std::size_t count = CountToSimplify(Points, Flag);
  if (count < 3) return Points;
  std::vector<TPoint2D> offsets;  // from the first point, so that far coordinates keep their last digits
  offsets.reserve(count);
  for (std::size_t i = 0; i < count; ++i)
    offsets.push_back({static_cast<double>(Points[i].X - Points[0].X), static_cast<double>(Points[i].Y - Points[0].Y)});
  TPath result;
  AppendKept(Points, detail::KeepPoints(offsets, Tol * kPathScale, Flag).Kept, result);
  return result;
}

}  // namespace platenest
