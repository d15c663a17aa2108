#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <optional>
#include <vector>

#include "BoxSweep.h"
#include "Guards.h"
#include "platenest/layoutcheck/Measures.h"

namespace platenest {

namespace {

constexpr int kSides = 4;  // a piece is searched for cuts from its left, right, bottom and top end
constexpr int kEnd = -1;

// Parts pieces by cuts until single boxes or a piece without a cut is left. Each piece is a set of boxes in four linked
// lists, one for each side, ascending by the near edge as seen from that side.
class TCutter {
 public:
  TCutter(std::span<const TPlacedBox> Boxes, double Tol, const std::vector<std::vector<int>>& Pieces)
      : FBoxes(Boxes), FTol(Tol), FTaken(Boxes.size(), false) {
    for (int side = 0; side < kSides; ++side) {
      FNext[side].resize(Boxes.size());
      FFormer[side].resize(Boxes.size());
    }
    for (const std::vector<int>& piece : Pieces) FPieces.push_back(MakePiece(piece));
  }

  bool PartsAll() {
    while (!FPieces.empty()) {
      TPiece piece = FPieces.back();
      FPieces.pop_back();
      while (piece.Count > 1) {
        const std::optional<TCut> cut = FindCut(piece);
        if (!cut) return false;
        SplitOff(piece, *cut);
      }
    }
    return true;
  }

 private:
  struct TPiece {
    std::array<int, kSides> Head;
    int Count;
  };
  struct TCut {
    int Side;
    int Count;  // boxes between that side and the cut
  };

  // Coordinates as seen from a side: near edges are the smaller ones.
  double Near(int Side, int Box) const {
    const TPlacedBox& b = FBoxes[Box];
    return Side == 0 ? b.Left : Side == 1 ? -b.Right : Side == 2 ? b.Bottom : -b.Top;
  }
  double Far(int Side, int Box) const {
    const TPlacedBox& b = FBoxes[Box];
    return Side == 0 ? b.Right : Side == 1 ? -b.Left : Side == 2 ? b.Top : -b.Bottom;
  }

  // Walks in from all sides in step, so that the work is bounded by the smaller side of the cut found.
  std::optional<TCut> FindCut(const TPiece& Piece) const {
    std::array<int, kSides> at = Piece.Head;
    std::array<double, kSides> reached;
    reached.fill(-std::numeric_limits<double>::infinity());
    for (int count = 1; count < Piece.Count; ++count)
      for (int side = 0; side < kSides; ++side) {
        reached[side] = std::max(reached[side], Far(side, at[side]));
        at[side] = FNext[side][at[side]];
        if (reached[side] <= Near(side, at[side]) + FTol) return TCut{side, count};
      }
    return std::nullopt;
  }

  void SplitOff(TPiece& Piece, const TCut& Cut) {
    std::vector<int> boxes(Cut.Count);
    int at = Piece.Head[Cut.Side];
    for (int& box : boxes) {
      box = at;
      at = FNext[Cut.Side][at];
    }
    // Sorting anew costs less than a walk along the whole piece when little comes off.
    const bool isSmall = Int64{Cut.Count} * std::bit_width(static_cast<unsigned>(Cut.Count)) < Piece.Count;
    if (isSmall) {
      for (const int box : boxes) Unlink(Piece, box);
      Piece.Count -= Cut.Count;
      if (Cut.Count > 1) FPieces.push_back(MakePiece(boxes));
    } else {
      FPieces.push_back(Separate(Piece, boxes));
    }
  }

  TPiece MakePiece(const std::vector<int>& Boxes) {
    TPiece piece{{}, Size(Boxes)};
    std::vector<TKeyed> order(Boxes.size());
    for (int side = 0; side < kSides; ++side) {
      for (int i = 0; i < Size(Boxes); ++i) order[i] = {Near(side, Boxes[i]), Boxes[i]};
      detail::SortKeyed(order);
      int tail = kEnd;
      piece.Head[side] = kEnd;
      for (const TKeyed& item : order) tail = Append(piece, side, tail, item.Index);
    }
    return piece;
  }

  // Takes Boxes out of the piece by one walk along each of its lists.
  TPiece Separate(TPiece& Piece, const std::vector<int>& Boxes) {
    for (const int box : Boxes) FTaken[box] = true;
    TPiece taken{{}, Size(Boxes)};
    TPiece rest{{}, Piece.Count - taken.Count};
    for (int side = 0; side < kSides; ++side) {
      int takenTail = kEnd;
      int restTail = kEnd;
      taken.Head[side] = rest.Head[side] = kEnd;
      for (int box = Piece.Head[side]; box != kEnd;) {
        const int next = FNext[side][box];
        if (FTaken[box])
          takenTail = Append(taken, side, takenTail, box);
        else
          restTail = Append(rest, side, restTail, box);
        box = next;
      }
    }
    for (const int box : Boxes) FTaken[box] = false;
    Piece = rest;
    return taken;
  }

  int Append(TPiece& Piece, int Side, int Tail, int Box) {
    (Tail == kEnd ? Piece.Head[Side] : FNext[Side][Tail]) = Box;
    FFormer[Side][Box] = Tail;
    FNext[Side][Box] = kEnd;
    return Box;
  }

  void Unlink(TPiece& Piece, int Box) {
    for (int side = 0; side < kSides; ++side) {
      const int next = FNext[side][Box];
      const int former = FFormer[side][Box];
      (former == kEnd ? Piece.Head[side] : FNext[side][former]) = next;
      if (next != kEnd) FFormer[side][next] = former;
    }
  }

  using TKeyed = detail::TKeyed;
  std::span<const TPlacedBox> FBoxes;
  double FTol;
  std::array<std::vector<int>, kSides> FNext;
  std::array<std::vector<int>, kSides> FFormer;
  std::vector<char> FTaken;
  std::vector<TPiece> FPieces;
};

// Makes all cuts across all pieces at once, in turn along both axes, as long as that leads on: layouts in rows and
// columns are done after a few turns. What is left is for TCutter; the order of cuts makes no difference.
class TTurnCutter {
 public:
  TTurnCutter(std::span<const TPlacedBox> Boxes, double Tol)
      : FBoxes(Boxes), FTol(Tol), FPieceOf(Boxes.size()), FStarts{0, Size(Boxes)} {
    FOrder[0] = Indices(detail::OrderBy(Boxes, [](const TPlacedBox& B) { return B.Bottom; }));
    FOrder[1] = Indices(detail::OrderBy(Boxes, [](const TPlacedBox& B) { return B.Left; }));
  }

  // The pieces of two or more boxes that are left.
  std::vector<std::vector<int>> Run() {
    int fruitless = 0;
    for (int turn = 0; turn < kTurns && fruitless < 2 && Size(FStarts) <= Size(FBoxes); ++turn) {
      const int axis = turn % 2;
      const auto pieces = FStarts.size();
      CutAll(axis);
      fruitless = FStarts.size() > pieces ? 0 : fruitless + 1;
      Regroup(FOrder[1 - axis]);
    }
    std::vector<std::vector<int>> left;
    std::vector<int>& order = FOrder[0];
    Regroup(order);
    for (int i = 0; i + 1 < Size(FStarts); ++i)
      if (FStarts[i + 1] - FStarts[i] > 1)
        left.emplace_back(order.begin() + FStarts[i], order.begin() + FStarts[i + 1]);
    return left;
  }

 private:
  static constexpr int kTurns = 10;

  static std::vector<int> Indices(const std::vector<detail::TKeyed>& Order) {
    std::vector<int> indices(Order.size());
    std::ranges::transform(Order, indices.begin(), &detail::TKeyed::Index);
    return indices;
  }

  // Numbers the pieces anew. Orders go piece by piece.
  void CutAll(int Axis) {
    const std::vector<int>& order = FOrder[Axis];
    std::vector<int> starts;
    for (int i = 0; i + 1 < Size(FStarts); ++i) {
      double reached = -std::numeric_limits<double>::infinity();
      for (int k = FStarts[i]; k < FStarts[i + 1]; ++k) {
        const TPlacedBox& box = FBoxes[order[k]];
        if (reached <= (Axis == 0 ? box.Bottom : box.Left) + FTol) starts.push_back(k);
        reached = std::max(reached, Axis == 0 ? box.Top : box.Right);
        FPieceOf[order[k]] = Size(starts) - 1;
      }
    }
    starts.push_back(Size(FBoxes));
    FStarts = std::move(starts);
  }

  void Regroup(std::vector<int>& Order) const {
    std::vector<int> next(FStarts.begin(), FStarts.end() - 1);
    std::vector<int> grouped(Order.size());
    for (const int box : Order) grouped[next[FPieceOf[box]]++] = box;
    Order = std::move(grouped);
  }

  std::span<const TPlacedBox> FBoxes;
  double FTol;
  std::array<std::vector<int>, 2> FOrder;  // by the lower and by the left edge
  std::vector<int> FPieceOf;               // by box
  std::vector<int> FStarts;                // of the pieces within the orders, and the end
};

}  // namespace

bool IsEdgeToEdge(std::span<const TPlacedBox> Boxes, double Tol) {
  detail::RequireProper(Boxes, "IsEdgeToEdge");
  detail::RequireFinite(Tol, "IsEdgeToEdge", "the tolerance");
  if (Boxes.size() < 2) return true;
  const std::vector<std::vector<int>> left = TTurnCutter(Boxes, Tol).Run();
  return left.empty() || TCutter(Boxes, Tol, left).PartsAll();
}

}  // namespace platenest
