#include "CircleFill.h"

#include <algorithm>
#include <cmath>
#include <queue>
#include <tuple>

#include "CircleGrid.h"
#include "platenest/foundation/StopToken.h"

namespace platenest::detail {

namespace {

// In the nesters' units; circles that come nearer by less touch.
constexpr double kTouch = 1e-6;
constexpr int kLooksBetweenPolls = 64;

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

  // Adds up to Amount circles of one size; their places go to Place(center).
  template <class Placer>
  void Fill(double Radius, int Amount, Placer Place) {
    FRadius = Radius + FHalfGap;
    FQueue = {};
    TryCorners();
    for (int i = 0; i < static_cast<int>(FGrid.Discs().size()); ++i) {
      if (i % kLooksBetweenPolls == 0 && RunStopRequested()) return;
      TryAround(i, /*OnlyOlder=*/true);
    }
    for (int placed = 0; placed < Amount && !FQueue.empty();) {
      const TPoint2D center = FQueue.top().Center;
      FQueue.pop();
      if (!FGrid.IsFree(center, FRadius, kTouch)) continue;
      FGrid.Add(center, FRadius);
      Place(TPoint2D{center.X - FHalfGap, center.Y - FHalfGap});
      ++placed;
      if (placed % kLooksBetweenPolls == 0 && RunStopRequested()) return;
      TryAround(static_cast<int>(FGrid.Discs().size()) - 1, /*OnlyOlder=*/false);
    }
  }

 private:
  struct TCandidate {
    TPoint2D Center;
    bool IsLeft;
    // The queue's top is the largest.
    friend bool operator<(const TCandidate& A, const TCandidate& B) {
      const auto key = [](const TCandidate& C) {
        return C.IsLeft ? std::pair(C.Center.X, C.Center.Y) : std::pair(C.Center.Y, C.Center.X);
      };
      return key(A) > key(B);
    }
  };

  void Try(double X, double Y) {
    const double r = FRadius - kTouch;
    if (!(X >= r && Y >= r && X <= FWidth - r && Y <= FHeight - r)) return;
    if (FGrid.IsFree({X, Y}, FRadius, kTouch)) FQueue.push({{X, Y}, FIsLeft});
  }

  void TryCorners() {
    for (const double x : {FRadius, FWidth - FRadius})
      for (const double y : {FRadius, FHeight - FRadius}) Try(x, y);
  }

  // Places that touch this circle and an edge, or another circle; only earlier ones where all will have their turn.
  void TryAround(int Index, bool OnlyOlder) {
    const TCircleGrid::TDisc disc = FGrid.Discs()[Index];
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
  for (int i = 0; i < Size(Sizes.Parts) && !RunStopRequested(); ++i) {
    if (Left[i] <= 0 || !Holds(Sizes.Plates[Plate], Sizes.Parts[i])) continue;
    fill.Fill(Sizes.Parts[i].Radius, Left[i], [&](const TPoint2D& center) { Spots.emplace_back(i, center); });
  }
}

}  // namespace platenest::detail
