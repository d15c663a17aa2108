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
  TCutter(std::span<const TPlacedBox> Boxes, double Tol) : FBoxes(Boxes), FTol(Tol), FTaken(Boxes.size(), false) {
    std::vector<int> all(Boxes.size());
    for (int i = 0; i < Size(all); ++i) all[i] = i;
    for (int side = 0; side < kSides; ++side) {
      FNext[side].resize(Boxes.size());
      FFormer[side].resize(Boxes.size());
    }
    FPieces.push_back(MakePiece(all));
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

}  // namespace

bool IsEdgeToEdge(std::span<const TPlacedBox> Boxes, double Tol) {
  detail::RequireProper(Boxes, "IsEdgeToEdge");
  detail::RequireFinite(Tol, "IsEdgeToEdge", "the tolerance");
  return Boxes.size() < 2 || TCutter(Boxes, Tol).PartsAll();
}

}  // namespace platenest
