#include "LatticeSearch.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "Region.h"
#include "platenest/foundation/Rounding.h"

namespace platenest::bench {

namespace {

constexpr double kAllowedUnits = 25;  // path units that a copy may lie within the no-fit polygon
constexpr int kReach = 8;             // copies to each side that are looked at
constexpr int kEven = 96;             // first vectors, evenly spaced on the whole border
constexpr int kVertices = 128;        // and vertices, at most
constexpr int kFiner = 8;             // parts of a spacing in each of the finer rounds
constexpr int kRounds = 2;

double Cross(const TIntPoint& A, const TIntPoint& B) {
  return static_cast<double>(A.X) * static_cast<double>(B.Y) - static_cast<double>(A.Y) * static_cast<double>(B.X);
}

double Dot(const TIntPoint& A, const TIntPoint& B) {
  return static_cast<double>(A.X) * static_cast<double>(B.X) + static_cast<double>(A.Y) * static_cast<double>(B.Y);
}

double Length(const TIntPoint& A) {
  return std::sqrt(Dot(A, A));
}

TIntPoint Combined(const TIntPoint& A, Int64 I, const TIntPoint& B, Int64 J) {
  return {I * A.X + J * B.X, I * A.Y + J * B.Y};
}

// All contours as one stretch of edges.
class TBorder {
 public:
  explicit TBorder(const TPaths& Paths) {
    for (const TPath& path : Paths) {
      for (std::size_t i = 0; i < path.size(); ++i) {
        const TIntPoint& next = path[i + 1 == path.size() ? 0 : i + 1];
        FEdges.push_back({path[i], next, FLength});
        FLength += Length(Combined(next, 1, path[i], -1));
      }
    }
  }

  double Total() const { return FLength; }

  TIntPoint PointAt(double Way) const {
    const double way = std::clamp(Way, 0.0, FLength);
    auto edge =
        std::upper_bound(FEdges.begin(), FEdges.end(), way, [](double w, const TEdge& e) { return w < e.Start; });
    --edge;
    const TIntPoint along = Combined(edge->B, 1, edge->A, -1);
    const double t = Length(along) > 0 ? (way - edge->Start) / Length(along) : 0;
    return {edge->A.X + Round(t * static_cast<double>(along.X)), edge->A.Y + Round(t * static_cast<double>(along.Y))};
  }

  std::vector<double> Vertices() const {
    std::vector<double> ways;
    for (const TEdge& edge : FEdges) ways.push_back(edge.Start);
    return ways;
  }

 private:
  struct TEdge {
    TIntPoint A;
    TIntPoint B;
    double Start;  // on the border
  };
  std::vector<TEdge> FEdges;
  double FLength = 0;
};

class TSearch {
 public:
  TSearch(const TPaths& NFP, double Area) : FNfp(Normalized(NFP)), FBorder(FNfp), FLeast(Area) {
    const TIntRect box = TPathUtils::BoundBox(FNfp);
    FExtent = std::hypot(static_cast<double>(box.Width()), static_cast<double>(box.Height()));
  }

  void Run() {
    double spacing = FBorder.Total() / kEven;
    for (int i = 0; i < kEven; ++i) Try(i * spacing);
    const std::vector<double> vertices = FBorder.Vertices();
    const std::size_t step = 1 + vertices.size() / kVertices;
    for (std::size_t i = 0; i < vertices.size(); i += step) Try(vertices[i]);
    for (int round = 0; round < kRounds; ++round) {
      const double middle = FBestWay;
      for (int i = -kFiner; i <= kFiner; ++i) Try(middle + i * spacing / kFiner);
      spacing /= kFiner;
    }
  }

  TIntPoint First;
  TIntPoint Second;

 private:
  // The lattice of a vector and of its opposite are the same.
  void Try(double Way) {
    const TIntPoint first = FBorder.PointAt(Way);
    if (first.Y < 0 || (first.Y == 0 && first.X <= 0)) return;
    TPath seconds;
    for (const TPath& path : RowOf(first)) {
      for (const TIntPoint& vertex : path) {
        const double cell = std::fabs(Cross(first, vertex));
        if (cell >= FLeast * 0.9999 && cell < FBest) seconds.push_back(vertex);
      }
    }
    std::sort(seconds.begin(), seconds.end(), [&](const TIntPoint& p, const TIntPoint& q) {
      return std::fabs(Cross(first, p)) < std::fabs(Cross(first, q));
    });
    for (TIntPoint second : seconds) {
      second = Combined(second, 1, first, -Round(Dot(first, second) / Dot(first, first)));
      if (!IsClear(first, second)) continue;
      FBest = std::fabs(Cross(first, second));
      FBestWay = Way;
      First = first;
      Second = second;
      return;
    }
  }

  TPaths RowOf(const TIntPoint& Step) const {
    const int copies = std::min(kReach, static_cast<int>(FExtent / Length(Step)) + 1);
    TPaths row;
    for (int k = -copies; k <= copies; ++k) {
      const TPaths copy = TPathUtils::Translate(FNfp, TPathUtils::CreatePointL2D(Combined(Step, k, Step, 0)));
      TPathUtils::PathsAddRange(row, copy);
    }
    return Normalized(row);
  }

  bool IsClear(const TIntPoint& A, const TIntPoint& B) const {
    for (int j = 0; j <= kReach; ++j) {
      for (int i = -kReach; i <= kReach; ++i) {
        if (j == 0 && i <= 0) continue;
        const TIntPoint at = Combined(A, i, B, j);
        if (PlaceOf(at, FNfp) == TPlace::Inside && DistanceToBorder(at, FNfp) > kAllowedUnits) return false;
      }
    }
    return true;
  }

  TPaths FNfp;
  TBorder FBorder;
  double FLeast;
  double FExtent = 0;
  double FBest = std::numeric_limits<double>::infinity();
  double FBestWay = 0;
};

}  // namespace

std::pair<TPoint2D, TPoint2D> SearchLattice(const TPaths& NFP, double Area) {
  TSearch search(NFP, Area * kPathScale * kPathScale);
  if (!NFP.empty()) search.Run();
  return {TPathUtils::CreatePoint2D(search.First, kPathScale), TPathUtils::CreatePoint2D(search.Second, kPathScale)};
}

}  // namespace platenest::bench
