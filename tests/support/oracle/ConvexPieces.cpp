#include "ConvexPieces.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <numeric>
#include <optional>
#include <stdexcept>
#include <utility>

#include "platenest/foundation/Sort.h"

namespace platenest {

namespace {

using TTriangle = std::array<TIntPoint, 3>;

// Whether the direction from Ring[i] to Point leads into the inside of the ring.
bool LooksInside(const TPath& Ring, std::size_t i, const TIntPoint& Point) {
  const TIntPoint& before = Ring[(i + Ring.size() - 1) % Ring.size()];
  const TIntPoint& after = Ring[(i + 1) % Ring.size()];
  const bool leftOfAfter = Turn(Ring[i], after, Point) > 0;
  const bool leftOfBefore = Turn(before, Ring[i], Point) > 0;
  return Turn(before, Ring[i], after) > 0 ? leftOfAfter && leftOfBefore : leftOfAfter || leftOfBefore;
}

// Whether the segment meets the contour elsewhere than in its own two ends.
bool IsBlocked(const TIntPoint& A, const TIntPoint& B, const TPath& Contour) {
  for (std::size_t i = 0; i < Contour.size(); ++i) {
    const TIntPoint& c = Contour[i];
    const TIntPoint& d = Next(Contour, i);
    if (c != A && c != B && IsOnSegment(c, A, B)) return true;
    if (c == A || c == B || d == A || d == B) continue;
    if (IsOnSegment(A, c, d) || IsOnSegment(B, c, d)) return true;
    if ((Turn(A, B, c) > 0) != (Turn(A, B, d) > 0) && (Turn(c, d, A) > 0) != (Turn(c, d, B) > 0)) return true;
  }
  return false;
}

struct TBridge {
  std::size_t OnRing;
  std::size_t OnHole;
};

double SquareDistance(const TIntPoint& A, const TIntPoint& B) {
  const double dx = static_cast<double>(A.X - B.X);
  const double dy = static_cast<double>(A.Y - B.Y);
  return dx * dx + dy * dy;
}

// The shortest free way from one vertex of the first hole to the ring. The other holes may stand in between.
std::optional<TBridge> BridgeFrom(std::size_t OnHole, const TPath& Ring, const TPaths& Holes) {
  const TIntPoint& from = Holes[0][OnHole];
  std::vector<std::size_t> order(Ring.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  SortBy(order, [&](std::size_t a, std::size_t b) {
    return Sign(SquareDistance(Ring[a], from), SquareDistance(Ring[b], from));
  });
  for (const std::size_t i : order) {
    if (Ring[i] == from && LooksInside(Ring, i, Next(Holes[0], OnHole))) return TBridge{i, OnHole};
    if (!LooksInside(Ring, i, from) || IsBlocked(from, Ring[i], Ring)) continue;
    const auto blocks = [&](const TPath& hole) { return IsBlocked(from, Ring[i], hole); };
    if (std::ranges::none_of(Holes, blocks)) return TBridge{i, OnHole};
  }
  return std::nullopt;
}

using TPlainPoint = std::pair<Int64, Int64>;  // has an order
TPlainPoint Plain(const TIntPoint& Point) {
  return {Point.X, Point.Y};
}

std::size_t LeftmostOf(const TPath& Contour) {
  return static_cast<std::size_t>(std::ranges::min_element(Contour, {}, Plain) - Contour.begin());
}

void Splice(TPath& Ring, const TPath& Hole, const TBridge& Bridge) {
  TPath tour(Hole.begin() + static_cast<std::ptrdiff_t>(Bridge.OnHole), Hole.end());
  tour.insert(tour.end(), Hole.begin(), Hole.begin() + static_cast<std::ptrdiff_t>(Bridge.OnHole) + 1);
  tour.push_back(Ring[Bridge.OnRing]);
  Ring.insert(Ring.begin() + static_cast<std::ptrdiff_t>(Bridge.OnRing) + 1, tour.begin(), tour.end());
}

// One weakly simple ring around all: each hole hangs on it by a way there and back. Holes come from left to right, so
// the leftmost vertex of the next one always sees the ring.
std::optional<TPath> OneRing(const TPaths& Polygon) {
  TPath ring = Polygon.front();
  TPaths holes(Polygon.begin() + 1, Polygon.end());
  SortBy(holes, [](const TPath& a, const TPath& b) { return Sign(a[LeftmostOf(a)].X, b[LeftmostOf(b)].X); });
  for (; !holes.empty(); holes.erase(holes.begin())) {
    const std::optional<TBridge> bridge = BridgeFrom(LeftmostOf(holes[0]), ring, holes);
    if (!bridge) return std::nullopt;
    Splice(ring, holes[0], *bridge);
  }
  return ring;
}

class TEarCutter {
 public:
  explicit TEarCutter(const TPath& Ring) : FRing(Ring) {}

  bool Cut(std::vector<TTriangle>& Triangles) {
    std::size_t at = 0;
    std::size_t misses = 0;
    while (FRing.size() > 2 && misses <= FRing.size()) {
      at %= FRing.size();
      const TIntPoint a = FRing[(at + FRing.size() - 1) % FRing.size()];
      const TIntPoint b = FRing[at];
      const TIntPoint c = FRing[(at + 1) % FRing.size()];
      const TWide turn = Turn(a, b, c);
      if (turn < 0 || (turn > 0 && !IsFree(a, b, c))) {
        ++at;
        ++misses;
        continue;
      }
      if (turn > 0) Triangles.push_back({a, b, c});
      FRing.erase(FRing.begin() + static_cast<std::ptrdiff_t>(at));
      misses = 0;
    }
    return FRing.size() < 3;
  }

 private:
  bool IsFree(const TIntPoint& A, const TIntPoint& B, const TIntPoint& C) const {
    return std::none_of(FRing.begin(), FRing.end(), [&](const TIntPoint& p) {
      if (p == A || p == B || p == C) return false;
      return Turn(A, B, p) >= 0 && Turn(B, C, p) >= 0 && Turn(C, A, p) >= 0;
    });
  }

  TPath FRing;
};

class TConvexJoiner {
 public:
  explicit TConvexJoiner(const std::vector<TTriangle>& Triangles) {
    for (const TTriangle& triangle : Triangles) {
      FPieces.emplace_back(triangle.begin(), triangle.end());
      Own(FPieces.back(), FPieces.size() - 1);
    }
  }

  std::vector<TPath> Join() {
    const auto sides = FOwner;
    for (const auto& [side, owner] : sides) TryJoin(side.first, side.second);
    std::erase_if(FPieces, [](const TPath& piece) { return piece.empty(); });
    return std::move(FPieces);
  }

 private:
  void Own(const TPath& Sides, std::size_t Piece) {
    for (std::size_t i = 0; i < Sides.size(); ++i) FOwner[{Plain(Sides[i]), Plain(Next(Sides, i))}] = Piece;
  }

  void TryJoin(const TPlainPoint& A, const TPlainPoint& B) {
    const auto mine = FOwner.find({A, B});
    const auto other = FOwner.find({B, A});
    if (mine == FOwner.end() || other == FOwner.end() || mine->second == other->second) return;
    TPath& first = FPieces[mine->second];
    TPath& second = FPieces[other->second];
    TPath joined = Tour(first, B);
    const TPath tail = Tour(second, A);
    if (Plain(joined.back()) != A || Plain(tail.back()) != B) return;
    joined.insert(joined.end(), tail.begin() + 1, tail.end() - 1);
    if (!IsConvex(joined)) return;
    Own(second, mine->second);
    second.clear();
    first = std::move(joined);
    FOwner.erase({A, B});
    FOwner.erase({B, A});
  }

  static TPath Tour(TPath Piece, const TPlainPoint& Start) {
    std::rotate(Piece.begin(), std::ranges::find(Piece, Start, Plain), Piece.end());
    return Piece;
  }

  std::vector<TPath> FPieces;
  std::map<std::pair<TPlainPoint, TPlainPoint>, std::size_t> FOwner;
};

// Makes each vertex that lies on an edge a vertex of that edge's contour as well.
TPaths WithContacts(const TPaths& Polygon) {
  TPaths result;
  for (const TPath& contour : Polygon) {
    TPath& cut = result.emplace_back();
    for (std::size_t i = 0; i < contour.size(); ++i) {
      const TIntPoint& a = contour[i];
      const TIntPoint& b = Next(contour, i);
      TPath contacts;
      for (const TPath& other : Polygon) {
        std::copy_if(other.begin(), other.end(), std::back_inserter(contacts),
                     [&](const TIntPoint& p) { return p != a && p != b && IsOnSegment(p, a, b); });
      }
      SortBy(contacts,
             [&](const TIntPoint& p, const TIntPoint& q) { return Sign(SquareDistance(a, p), SquareDistance(a, q)); });
      contacts.erase(std::unique(contacts.begin(), contacts.end()), contacts.end());
      cut.push_back(a);
      cut.insert(cut.end(), contacts.begin(), contacts.end());
    }
  }
  return result;
}

std::optional<std::vector<TPath>> TryPieces(const TPaths& Polygon) {
  const std::optional<TPath> ring = OneRing(Polygon);
  std::vector<TTriangle> triangles;
  if (!ring || !TEarCutter(*ring).Cut(triangles)) return std::nullopt;
  return TConvexJoiner(triangles).Join();
}

// Polygons of a normalised region, each outer with the holes that lie in it.
std::vector<TPaths> PolygonsOf(const TPaths& Region) {
  TClipper clipper;
  clipper.AddPaths(Region, ClipperLib::ptSubject, true);
  TPolyTree tree;
  clipper.Execute(ClipperLib::ctUnion, tree, ClipperLib::pftNonZero, ClipperLib::pftNonZero);
  std::vector<TPaths> polygons;
  for (const ClipperLib::PolyNode* node = tree.GetFirst(); node != nullptr; node = node->GetNext()) {
    if (node->IsHole()) continue;
    polygons.push_back({node->Contour});
    for (const ClipperLib::PolyNode* hole : node->Childs) polygons.back().push_back(hole->Contour);
  }
  return polygons;
}

}  // namespace

std::vector<TPath> ConvexPieces(const TPaths& Polygon) {
  if (Polygon.empty()) return {};
  if (IsSimple(Polygon)) {
    if (auto pieces = TryPieces(Polygon)) return std::move(*pieces);
  }
  std::vector<TPath> all;
  for (const TPaths& polygon : PolygonsOf(Polygon)) {
    const auto pieces = TryPieces(WithContacts(polygon));
    if (!pieces) throw std::runtime_error("this polygon cannot be cut into convex pieces");
    all.insert(all.end(), pieces->begin(), pieces->end());
  }
  return all;
}

}  // namespace platenest
