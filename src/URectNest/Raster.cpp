#include "platenest/URectNest/Raster.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "platenest/foundation/Errors.h"

namespace platenest {

namespace {

constexpr int kWordBits = 64;

// Keeps positions, and one past them, within int; an index of this length takes 4 GB.
constexpr int kMaxLength = 1'000'000'000;

// Up to this many copies of one box are added bit row by bit row, more of them by counting.
constexpr int kMostRowCopies = 48;

// The lengths from 0 to a size that can be reached, one bit each.
class TSumSet {
 public:
  explicit TSumSet(int Size) { Restart(Size); }

  // Starts anew on another size with 0 reached. The members 0 to 3 are dropped, the higher ones stay as far as they
  // fit: the second axis of a raster without rotation begins with what the first one left.
  void Restart(int Size) {
    FSize = Size;
    FWords.resize(static_cast<std::size_t>(Size / kWordBits) + 1);
    FWords.front() = (FWords.front() & ~std::uint64_t{0xF}) | 1;
    DropAboveSize();
  }

  // Adds every sum of a member and at most Copies pieces, each of length A or B.
  void AddPieces(int A, int B, int Copies) {
    if (Copies > kMostRowCopies) return AddByCounting(A, B, Copies);
    for (int copy = 0; copy < Copies; ++copy) {
      FNext = FWords;
      JoinShifted(A);
      if (B != A) JoinShifted(B);
      std::swap(FWords, FNext);
      DropAboveSize();
      if (FWords == FNext) return;
    }
  }

  // The members not above Last, ascending, and Last itself.
  std::vector<int> MembersAndEnd(int Last, int End) const {
    std::vector<int> members;
    for (std::size_t w = 0; w < FWords.size(); ++w) {
      for (std::uint64_t bits = FWords[w]; bits != 0; bits &= bits - 1) {
        const int member = static_cast<int>(w) * kWordBits + std::countr_zero(bits);
        if (member <= Last) members.push_back(member);
      }
    }
    if (members.back() != End) members.push_back(End);
    return members;
  }

 private:
  void DropAboveSize() {
    const int used = FSize % kWordBits + 1;
    if (used < kWordBits) FWords.back() &= (std::uint64_t{1} << used) - 1;
  }

  // FNext |= FWords << Length
  void JoinShifted(int Length) {
    const std::size_t skip = static_cast<std::size_t>(Length / kWordBits);
    const int shift = Length % kWordBits;
    const std::size_t count = FWords.size();
    if (skip >= count) return;
    FNext[skip] |= FWords[0] << shift;
    for (std::size_t w = skip + 1; w < count; ++w)
      FNext[w] |= (FWords[w - skip] << shift) | (FWords[w - skip - 1] >> 1 >> (kWordBits - 1 - shift));
  }

  bool Has(int Length) const {
    return (FWords[static_cast<std::size_t>(Length / kWordBits)] >> (Length % kWordBits) & 1) != 0;
  }

  // The fewest pieces that each length needs beyond a present member decide.
  void AddByCounting(int A, int B, int Copies) {
    std::vector<int> pieces(static_cast<std::size_t>(FSize) + 1);
    for (int t = 0; t <= FSize; ++t) {
      if (Has(t)) continue;
      int fewest = Copies;
      if (t >= A) fewest = std::min(fewest, pieces[static_cast<std::size_t>(t - A)]);
      if (t >= B) fewest = std::min(fewest, pieces[static_cast<std::size_t>(t - B)]);
      pieces[static_cast<std::size_t>(t)] = std::min(fewest, Copies) + 1;
    }
    for (int t = 0; t <= FSize; ++t) {
      if (pieces[static_cast<std::size_t>(t)] <= Copies)
        FWords[static_cast<std::size_t>(t / kWordBits)] |= std::uint64_t{1} << (t % kWordBits);
    }
  }

  int FSize = 0;
  std::vector<std::uint64_t> FWords;
  std::vector<std::uint64_t> FNext;
};

// How many copies of a box can lie side by side on the length axis at all, at most Amount.
int UsefulCopies(int L, const TIntBox& Box) {
  const int shortSide = std::min(Box.A, Box.B);
  return shortSide > 0 ? std::min(L / shortSide, Box.Amount) : 0;
}

std::vector<int> ReducedPoints(int Size, const std::vector<int>& List) {
  const std::vector<int> normal = TRaster::ConstructNormalList(Size, List);
  std::vector<int> points(List.size() + 3);
  const int used = TRaster::ConstructReducedRaster(Size, List, platenest::Size(List) - 1, points, normal);
  points.resize(static_cast<std::size_t>(used));
  return points;
}

std::vector<int> PositionsNotBelow(int Size, const std::vector<int>& Points) {
  std::vector<int> index;
  index.reserve(static_cast<std::size_t>(Size) + 1);
  for (std::size_t k = 0; k < Points.size(); ++k)
    index.resize(static_cast<std::size_t>(Points[k]) + 1, static_cast<int>(k));
  return index;
}

std::vector<int> MirroredPositions(int Size, const std::vector<int>& Points, const std::vector<int>& Index) {
  std::vector<int> mirrored;
  mirrored.reserve(Points.size());
  for (const int point : Points) mirrored.push_back(Index[static_cast<std::size_t>(Size - point)]);
  return mirrored;
}

}  // namespace

void TRaster::Initialize(int L, int W, const TIntBoxList& Boxes, bool AllowRotate, bool UseNormal) {
  if (L < 0 || W < 0) throw TArgumentError("[Error] TRaster.Initialize: negative plate size");
  if (L > kMaxLength || W > kMaxLength) throw TRangeError("[Error] TRaster.Initialize: plate size above 1000000000");
  std::vector<int> listL;
  std::vector<int> listW;
  ConstructConeCombinationWithAmt(L, W, Boxes, listL, listW, AllowRotate);
  if (UseNormal)
    ConstructNormalPattern(listL, listW);
  else
    ConstructNormalPattern(ReducedPoints(L, listL), ReducedPoints(W, listW));
  ConstructIndex(L, W);
  ConstructInvIndex(L, W);
}

void TRaster::ConstructConeCombinationWithAmt(int L, int W, const TIntBoxList& Boxes, std::vector<int>& ListL,
                                              std::vector<int>& ListW, bool AllowRotate) {
  TSumSet sums(L);
  for (const TIntBox& box : Boxes) sums.AddPieces(box.A, AllowRotate ? box.B : box.A, UsefulCopies(L, box));
  ListL = sums.MembersAndEnd(L, L);
  if (!AllowRotate) {
    sums.Restart(W);
    for (const TIntBox& box : Boxes) sums.AddPieces(box.B, box.B, UsefulCopies(L, box));
  }
  ListW = sums.MembersAndEnd(W, W);
}

std::vector<int> TRaster::ConstructNormalList(int Size, const std::vector<int>& List) {
  std::vector<int> normal(static_cast<std::size_t>(Size) + 1);
  std::size_t k = 0;
  for (int i = 0; i <= Size; ++i) {
    while (k + 1 < List.size() && List[k + 1] <= i) ++k;
    normal[static_cast<std::size_t>(i)] = List[k];
  }
  return normal;
}

int TRaster::ConstructReducedRaster(int Size, const std::vector<int>& List, int HighIndex, std::vector<int>& Out,
                                    const std::vector<int>& Normal) {
  int last = HighIndex;
  while (last >= 0 && List[static_cast<std::size_t>(last)] > Size) --last;
  Out[0] = 0;
  int used = 1;
  for (int i = last; i >= 0; --i) {
    const int point = Normal[static_cast<std::size_t>(Size - List[static_cast<std::size_t>(i)])];
    if (point > Out[static_cast<std::size_t>(used - 1)]) Out[static_cast<std::size_t>(used++)] = point;
  }
  return used;
}

void TRaster::ConstructNormalPattern(const std::vector<int>& ListL, const std::vector<int>& ListW) {
  RasterL = ListL;
  RasterW = ListW;
  SizeL = Size(RasterL);
  SizeW = Size(RasterW);
}

void TRaster::ConstructIndex(int L, int W) {
  IndexL = PositionsNotBelow(L, RasterL);
  IndexW = PositionsNotBelow(W, RasterW);
}

void TRaster::ConstructInvIndex(int L, int W) {
  IndexInvL = MirroredPositions(L, RasterL, IndexL);
  IndexInvW = MirroredPositions(W, RasterW, IndexW);
}

}  // namespace platenest
