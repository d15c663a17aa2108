#include <algorithm>
#include <vector>

#include "BoxSweep.h"
#include "FreeRun.h"
#include "Guards.h"
#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Sort.h"
#include "platenest/foundation/Types.h"
#include "platenest/layoutcheck/Measures.h"

namespace platenest {

namespace {

constexpr int kBar = -1;

// A lower or upper edge of an obstacle on the way up through a slab. A bar is blocked over the full width of the slab.
struct TEdge {
  double Y;
  int Obstacle;  // kBar: no matter which
  bool Begins;
};

using TEdges = std::vector<TEdge>;

// Stretches of a slab between two edges of real obstacles, bars merged: of all gaps between the bars of one stretch
// only the highest can hold the largest rectangle, since the obstacles beside it are the same all along the stretch. So
// a slab never carries more bar edges than a few for each edge of a real obstacle.
class TBarMerger {
 public:
  explicit TBarMerger(TEdges& Out) : FOut(Out) {}

  void BarBegins(double Y) {
    if (++FDepth > 1) return;
    if (!FGapOpen) {
      FOut.push_back({Y, kBar, true});
    } else if (!FHasGap || Y - FGapFrom > FGap.Past - FGap.From) {
      FGap = {FGapFrom, Y};
      FHasGap = true;
    }
    FGapOpen = false;
  }
  void BarEnds(double Y) {
    if (--FDepth > 0) return;
    FGapOpen = true;
    FGapFrom = Y;
  }
  // To be called before a real edge is appended, and at the end.
  void EndStretch() {
    if (FHasGap) {
      FOut.push_back({FGap.From, kBar, false});
      FOut.push_back({FGap.Past, kBar, true});
    }
    if (FGapOpen) FOut.push_back({FGapFrom, kBar, false});
    FHasGap = FGapOpen = false;
  }

 private:
  struct TGap {
    double From = 0;
    double Past = 0;
  };

  TEdges& FOut;
  int FDepth = 0;
  bool FGapOpen = false;  // a bar ended within this stretch and none began since
  double FGapFrom = 0;
  bool FHasGap = false;
  TGap FGap;  // the highest gap between two bars within this stretch
};

// Where the obstacles on one side of a line end, of those that are open on the way up. Limits grow away from the line.
class TNearest {
 public:
  void Clear() { FQueue.clear(); }
  void Add(double Limit, double Top) {
    FQueue.push_back({Limit, Top});
    std::push_heap(FQueue.begin(), FQueue.end());
  }
  // The nearest limit of the obstacles that reach above Y; Otherwise when there is none.
  double At(double Y, double Otherwise) {
    while (!FQueue.empty() && FQueue.front().Top <= Y) {
      std::pop_heap(FQueue.begin(), FQueue.end());
      FQueue.pop_back();
    }
    return FQueue.empty() ? Otherwise : std::min(FQueue.front().Limit, Otherwise);
  }

 private:
  struct TOpen {
    double Limit;
    double Top;
    bool operator<(const TOpen& Other) const { return Limit > Other.Limit; }  // the nearest in front
  };
  std::vector<TOpen> FQueue;
};

class TFreeBoxSearch {
 public:
  // Obstacles lie within Area.
  TFreeBoxSearch(std::vector<TPlacedBox> Obstacles, const TPlacedBox& Area)
      : FObstacles(std::move(Obstacles)), FArea(Area) {}

  TPlacedBox Run() {
    const TEdges edges = AllEdges();
    OfferRims();
    Slab(FArea.Left, FArea.Right, Narrowed(edges, FArea.Left, FArea.Right));
    return FBest;
  }

 private:
  // On the way up; of equal heights by obstacle, its lower edge first.
  TEdges AllEdges() const {
    using detail::TKeyed;
    const std::vector<TKeyed> begins = detail::OrderBy(FObstacles, [](const TPlacedBox& B) { return B.Bottom; });
    const std::vector<TKeyed> ends = detail::OrderBy(FObstacles, [](const TPlacedBox& B) { return B.Top; });
    TEdges edges;
    edges.reserve(2 * FObstacles.size());
    auto end = ends.begin();
    const auto takeEnd = [&] {
      edges.push_back({end->Key, end->Index, false});
      ++end;
    };
    for (const auto& [y, obstacle] : begins) {
      while (end != ends.end() && (end->Key < y || (end->Key == y && end->Index < obstacle))) takeEnd();
      edges.push_back({y, obstacle, true});
    }
    while (end != ends.end()) takeEnd();
    return edges;
  }

  void Offer(const TPlacedBox& Box) {
    if (Box.Area() > FBest.Area()) FBest = Box;
  }

  // The strips along the four sides of the area: often the offcut itself, always a good start for skipping.
  void OfferRims() {
    TPlacedBox used{FArea.Right, FArea.Top, FArea.Left, FArea.Bottom};
    for (const TPlacedBox& b : FObstacles)
      used = {std::min(used.Left, b.Left), std::min(used.Bottom, b.Bottom), std::max(used.Right, b.Right),
              std::max(used.Top, b.Top)};
    Offer({FArea.Left, FArea.Bottom, used.Left, FArea.Top});
    Offer({FArea.Left, FArea.Bottom, FArea.Right, used.Bottom});
    Offer({used.Right, FArea.Bottom, FArea.Right, FArea.Top});
    Offer({FArea.Left, used.Top, FArea.Right, FArea.Top});
  }

  // The largest rectangle between two vertical lines: what lies across the median line, then both halves.
  void Slab(double Left, double Right, const TEdges& Edges) {
    const TPlacedBox gap = HighestGap(Left, Right, Edges);
    if (gap.Area() <= FBest.Area()) return;
    const std::optional<double> line = MedianLine(Left, Right, Edges);
    if (!line) return Offer(gap);
    AcrossLine(Left, *line, Right, Edges);
    Slab(Left, *line, Narrowed(Edges, Left, *line));
    Slab(*line, Right, Narrowed(Edges, *line, Right));
  }

  // The highest gap between bars: it holds all that is free when there are other obstacles, and is free when not.
  TPlacedBox HighestGap(double Left, double Right, const TEdges& Edges) const {
    TPlacedBox highest{Left, FArea.Bottom, Right, FArea.Bottom};
    double from = FArea.Bottom;
    int depth = 0;
    const auto close = [&](double Y) {
      if (Y - from > highest.Height()) highest = {Left, from, Right, Y};
    };
    for (const TEdge& edge : Edges) {
      if (edge.Obstacle != kBar) continue;
      if (edge.Begins && depth++ == 0) close(edge.Y);
      if (!edge.Begins && --depth == 0) from = edge.Y;
    }
    if (depth == 0) close(FArea.Top);
    return highest;
  }

  // The median of the vertical edges strictly inside the slab; nothing when there are only bars.
  std::optional<double> MedianLine(double Left, double Right, const TEdges& Edges) {
    FLines.clear();
    for (const TEdge& edge : Edges) {
      if (edge.Obstacle == kBar || !edge.Begins) continue;
      const TPlacedBox& box = FObstacles[edge.Obstacle];
      if (box.Left > Left) FLines.push_back(box.Left);
      if (box.Right < Right) FLines.push_back(box.Right);
    }
    if (FLines.empty()) return std::nullopt;
    const auto middle = FLines.begin() + Size(FLines) / 2;
    std::nth_element(FLines.begin(), middle, FLines.end());  // only the value counts, which any selection gives
    return *middle;
  }

  // Walks up the line and gathers, run by run of free line, where the obstacles on both sides end.
  void AcrossLine(double Left, double Line, double Right, const TEdges& Edges) {
    FToLeft.Clear();
    FToRight.Clear();
    double y = FArea.Bottom;
    int blocked = 0;
    for (const TEdge& edge : Edges) {
      if (edge.Y > y) Step(y, edge.Y, blocked > 0, Left, Right);
      y = edge.Y;
      const bool isBar = edge.Obstacle == kBar;
      const TPlacedBox& box = FObstacles[isBar ? 0 : edge.Obstacle];
      if (isBar || (box.Left < Line && Line < box.Right))
        blocked += edge.Begins ? 1 : -1;
      else if (edge.Begins && box.Right <= Line)
        FToLeft.Add(-box.Right, box.Top);
      else if (edge.Begins)
        FToRight.Add(box.Left, box.Top);
    }
    Step(y, FArea.Top, blocked > 0, Left, Right);
    EndRun();
  }

  void Step(double From, double To, bool IsBlocked, double Left, double Right) {
    if (IsBlocked || To <= From) return EndRun();
    const detail::TFreeStep step{From, -FToLeft.At(From, -Left), FToRight.At(From, Right)};
    if (FRun.empty() || FRun.back().Left != step.Left || FRun.back().Right != step.Right) FRun.push_back(step);
    FRunEnd = To;
  }

  void EndRun() {
    detail::FindLargestAcross(FRun, FRunEnd, FBest);
    FRun.clear();
  }

  // The edges that matter within a narrower slab.
  TEdges Narrowed(const TEdges& Edges, double Left, double Right) const {
    TEdges narrowed;
    TBarMerger merger(narrowed);
    for (const TEdge& edge : Edges) {
      const TPlacedBox& box = FObstacles[edge.Obstacle == kBar ? 0 : edge.Obstacle];
      if (edge.Obstacle == kBar || (box.Left <= Left && Right <= box.Right)) {
        edge.Begins ? merger.BarBegins(edge.Y) : merger.BarEnds(edge.Y);
      } else if (box.Left < Right && Left < box.Right) {
        merger.EndStretch();
        narrowed.push_back(edge);
      }
    }
    merger.EndStretch();
    return narrowed;
  }

  std::vector<TPlacedBox> FObstacles;
  TPlacedBox FArea;
  TPlacedBox FBest;
  std::vector<double> FLines;
  TNearest FToLeft;
  TNearest FToRight;
  std::vector<detail::TFreeStep> FRun;
  double FRunEnd = 0;
};

bool IsJoined(const TPlacedBox& A, const TPlacedBox& B) {
  const bool isRow = A.Bottom == B.Bottom && A.Top == B.Top;
  const bool isColumn = A.Left == B.Left && A.Right == B.Right;
  return (isRow && A.Left <= B.Right && B.Left <= A.Right) || (isColumn && A.Bottom <= B.Top && B.Bottom <= A.Top);
}

// The same obstacles with neighbours in the list joined where together they are a box, as in rows and grids: the room
// between them is the same.
std::vector<TPlacedBox> Joined(const std::vector<TPlacedBox>& Obstacles) {
  std::vector<TPlacedBox> joined;
  for (const TPlacedBox& obstacle : Obstacles) {
    TPlacedBox box = obstacle;
    while (!joined.empty() && IsJoined(joined.back(), box)) {
      const TPlacedBox& last = joined.back();
      box = {std::min(last.Left, box.Left), std::min(last.Bottom, box.Bottom), std::max(last.Right, box.Right),
             std::max(last.Top, box.Top)};
      joined.pop_back();
    }
    joined.push_back(box);
  }
  return joined;
}

}  // namespace

std::optional<TPlacedBox> LargestFreeBox(std::span<const TPlacedBox> Boxes, const TPlacedBox& Area, double Clearance,
                                         double Tol) {
  detail::RequireProper(Boxes, "LargestFreeBox");
  detail::RequireProper(Area, "LargestFreeBox", "the area");
  detail::RequireFinite(Clearance, "LargestFreeBox", "the clearance");
  detail::RequireFinite(Tol, "LargestFreeBox", "the tolerance");
  if (Clearance < 0 || Tol < 0)
    throw TArgumentError("[Error] LayoutCheck.LargestFreeBox: the clearance and the tolerance must not be below 0");
  std::vector<TPlacedBox> obstacles;
  obstacles.reserve(Boxes.size());
  for (const TPlacedBox& box : Boxes) {
    const TPlacedBox grown{std::max(box.Left - Clearance, Area.Left), std::max(box.Bottom - Clearance, Area.Bottom),
                           std::min(box.Right + Clearance, Area.Right), std::min(box.Top + Clearance, Area.Top)};
    if (grown.Left < grown.Right && grown.Bottom < grown.Top) obstacles.push_back(grown);
  }
  const TPlacedBox best = TFreeBoxSearch(Joined(obstacles), Area).Run();
  return best.Width() > Tol && best.Height() > Tol ? std::optional(best) : std::nullopt;
}

}  // namespace platenest
