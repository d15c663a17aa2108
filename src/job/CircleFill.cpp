#include "CircleFill.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <queue>
#include <utility>

#include "CircleGrid.h"
#include "platenest/foundation/StopToken.h"

namespace platenest::detail {

namespace {

// In the nesters' units; circles that come nearer by less touch.
constexpr double kTouch = 1e-6;
constexpr int kLooksBetweenPolls = 64;
// So much smaller a size looks again at all circles that stand; before that only at those that had room left.
constexpr double kLooksAgain = 0.95;
constexpr int kFewSizes = 40;

// The gap is kept by circles that are half of it larger on a plate that is half of it larger all round.
class TPlateFill {
 public:
  TPlateFill(const TCircleSizes& Sizes, int Plate, double Expected, TFillSide Side)
      : FHalfGap(Sizes.Gap / 2),
        FIsLeft(Side == TFillSide::Left),
        FWidth(Sizes.Plates[Plate].Width + Sizes.Gap),
        FHeight(Sizes.Plates[Plate].Height + Sizes.Gap),
        FGrid(FWidth, FHeight, Sizes.Parts.back().Radius + FHalfGap, Expected) {}

  void Stand(const TPoint2D& Center, double Radius) {
    FGrid.Add({Center.X + FHalfGap, Center.Y + FHalfGap}, Radius + FHalfGap);
  }

  // Adds up to Amount circles of one size, none larger than those before; their places go to Place(center). With
  // Everywhere all circles that stand are looked at, in any case where the size has shrunk much.
  template <class Placer>
  void Fill(double Radius, int Amount, bool Everywhere, Placer Place) {
    FRadius = Radius + FHalfGap;
    if (!LookAround(Everywhere)) return;
    for (int placed = 0; placed < Amount && !FQueue.empty();) {
      const TPoint2D center = FQueue.top().Center;
      FQueue.pop();
      if (!FGrid.IsFree(center, FRadius, kTouch)) continue;
      FGrid.Add(center, FRadius);
      Place(TPoint2D{center.X - FHalfGap, center.Y - FHalfGap});
      ++placed;
      if (placed % kLooksBetweenPolls == 0 && RunStopRequested()) return;
      TryAround(Size(FGrid.Discs()) - 1, /*OnlyOlder=*/false);
    }
  }

 private:
  struct TCandidate {
    TPoint2D Center;
    int Disc;  // it touches this circle, -1 for a corner of the plate
    bool IsLeft;
    // The queue's top is the largest.
    friend bool operator<(const TCandidate& A, const TCandidate& B) {
      const auto key = [](const TCandidate& C) {
        return C.IsLeft ? std::pair(C.Center.X, C.Center.Y) : std::pair(C.Center.Y, C.Center.X);
      };
      return key(A) > key(B);
    }
  };

  // Candidates for a size; false once stopped.
  bool LookAround(bool Everywhere) {
    const int count = Size(FGrid.Discs());
    if (Everywhere || FRadius < kLooksAgain * FLookedRadius) {
      FLookedRadius = FRadius;
      FQueue = {};
      TryCorners();
      for (int i = 0; i < count; ++i) {
        if (i % kLooksBetweenPolls == 0 && RunStopRequested()) return false;
        TryAround(i, /*OnlyOlder=*/true);
      }
      return true;
    }
    std::vector<int> open;
    for (; !FQueue.empty(); FQueue.pop()) open.push_back(FQueue.top().Disc);
    std::ranges::sort(open);
    const auto repeated = std::ranges::unique(open);
    open.erase(repeated.begin(), repeated.end());
    TryCorners();
    for (const int disc : open)
      if (disc >= 0) TryAround(disc, /*OnlyOlder=*/false);
    return !RunStopRequested();
  }

  void Try(double X, double Y) {
    const double r = FRadius - kTouch;
    if (!(X >= r && Y >= r && X <= FWidth - r && Y <= FHeight - r)) return;
    if (FGrid.IsFree({X, Y}, FRadius, kTouch)) FQueue.push({{X, Y}, FTouched, FIsLeft});
  }

  void TryCorners() {
    FTouched = -1;
    for (const double x : {FRadius, FWidth - FRadius})
      for (const double y : {FRadius, FHeight - FRadius}) Try(x, y);
  }

  // Places that touch this circle and an edge, or another circle; only earlier ones where all will have their turn.
  void TryAround(int Index, bool OnlyOlder) {
    const TCircleGrid::TDisc disc = FGrid.Discs()[Index];
    FTouched = Index;
    const double reach = disc.Radius + FRadius;
    for (const double x : {FRadius, FWidth - FRadius}) {
      const double high2 = reach * reach - (x - disc.Center.X) * (x - disc.Center.X);
      if (high2 < 0) continue;
      Try(x, disc.Center.Y - std::sqrt(high2));
      Try(x, disc.Center.Y + std::sqrt(high2));
    }
    for (const double y : {FRadius, FHeight - FRadius}) {
      const double wide2 = reach * reach - (y - disc.Center.Y) * (y - disc.Center.Y);
      if (wide2 < 0) continue;
      Try(disc.Center.X - std::sqrt(wide2), y);
      Try(disc.Center.X + std::sqrt(wide2), y);
    }
    FGrid.FindNear(disc.Center, reach + FRadius, FNear);
    for (const int other : FNear)
      if (other != Index && (!OnlyOlder || other < Index)) TryBetween(disc, FGrid.Discs()[other]);
  }

  // The two places that touch both.
  void TryBetween(const TCircleGrid::TDisc& A, const TCircleGrid::TDisc& B) {
    const double ra = A.Radius + FRadius;
    const double rb = B.Radius + FRadius;
    const double dx = B.Center.X - A.Center.X;
    const double dy = B.Center.Y - A.Center.Y;
    const double d2 = dx * dx + dy * dy;
    if (!(d2 > 0)) return;
    const double along = (d2 + ra * ra - rb * rb) / (2 * d2);
    const double across2 = ra * ra / d2 - along * along;
    if (across2 < 0) return;
    const double across = std::sqrt(across2);
    const TPoint2D foot{A.Center.X + along * dx, A.Center.Y + along * dy};
    Try(foot.X - across * dy, foot.Y + across * dx);
    Try(foot.X + across * dy, foot.Y - across * dx);
  }

  double FHalfGap;
  bool FIsLeft;
  double FWidth;
  double FHeight;
  TCircleGrid FGrid;
  double FRadius = 0;
  double FLookedRadius = std::numeric_limits<double>::infinity();
  int FTouched = -1;
  std::priority_queue<TCandidate> FQueue;
  std::vector<int> FNear;
};

}  // namespace

void FillPlate(const TCircleSizes& Sizes, int Plate, std::span<const int> Left, TFillSide Side, TCircleSpots& Spots) {
  double expected = static_cast<double>(Spots.size());
  for (int i = 0; i < Size(Sizes.Parts); ++i)
    expected += std::min<double>(Left[i], MostOnPlate(Sizes, Sizes.Plates[Plate], Sizes.Parts[i].Radius));
  TPlateFill fill(Sizes, Plate, expected, Side);
  for (const TCornerPlacement& spot : Spots) fill.Stand(spot.Center, Sizes.Parts[spot.CircleIdx].Radius);
  const bool everywhere = Size(Sizes.Parts) <= kFewSizes;
  for (int i = 0; i < Size(Sizes.Parts) && !RunStopRequested(); ++i) {
    if (Left[i] <= 0 || !Holds(Sizes.Plates[Plate], Sizes.Parts[i])) continue;
    fill.Fill(Sizes.Parts[i].Radius, Left[i], everywhere,
              [&](const TPoint2D& center) { Spots.emplace_back(i, center); });
  }
}

}  // namespace platenest::detail
