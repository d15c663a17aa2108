#include <algorithm>
#include <bit>
#include <cstddef>

#include "RskfPass.h"
#include "RskfWalk.h"

namespace platenest::detail {

namespace {

constexpr int kWordBits = 64;

Int64 LimitOf(const TIntBox& Box, Int64 PlateArea) {
  const Int64 mostByArea = PlateArea / (Int64{Box.A} * Box.B);
  return std::min({Int64{kMost16Bits}, Int64{Box.Amount}, mostByArea});
}

// The piece vectors of the walk, of kWords words, or of as many as the packing has if kWords is 0. What the present
// cell uses is told as a place to copy from.
template <int kWords>
class TPackedPieces {
 public:
  TPackedPieces(const TPiecePacking& Packing, TPieceTable& Used, int Columns)
      : FPacking(Packing),
        FUsed(Used),
        FWords(Packing.Words()),
        FSingle(Words()),
        FCandidates{Buffer(Columns), Buffer(Columns)} {
    FUsed.Use(0);
  }

  void BeginRow(int Row, int BestRow, int Buffer) {
    FUsed.Use(Row);
    FRow = FUsed.Row(Row);
    FBelow = FUsed.Row(BestRow);
    FCandidate = FCandidates[Buffer].data();
    FFormer = FCandidates[1 - Buffer].data();
  }
  void TakeSingle(int Box) {
    FPacking.SetSingle(FSingle.data(), Box);
    FCurrent = FSingle.data();
  }
  void TakeLeft(int BestCol) { FCurrent = At(FRow, BestCol); }
  void TakeBelow(int Column) { FCurrent = At(FBelow, Column); }
  void TakeCandidate(int Column) { FCurrent = At(FCandidate, Column); }
  void KeepCandidate(int Column) { Copy(At(FFormer, Column), At(FCandidate, Column)); }
  void StoreLeft(int BestCol, int Column) { Copy(At(FRow, BestCol), At(FRow, Column)); }
  void Store(int Column) { Copy(FCurrent, At(FRow, Column)); }
  void CopyCell(int Row, int From, int To) { Copy(At(FUsed.Row(Row), From), At(FUsed.Row(Row), To)); }
  bool JoinAlongLength(int Cut, int Column, int Target) {
    const TWord* const first = At(FRow, Cut);
    const TWord* const second = At(FRow, Column);
    if (!Fit(first, second)) return false;
    Add(first, second, At(FCandidate, Target));
    return true;
  }
  bool JoinAlongWidth(int Cut, int Column, int Target) {
    const TWord* const first = At(FUsed.Row(Cut), Column);
    const TWord* const second = At(FRow, Column);
    if (!Fit(first, second)) return false;
    FUsed.Use(Target);
    Add(first, second, At(FUsed.Row(Target), Column));
    return true;
  }

 private:
  int Words() const { return kWords > 0 ? kWords : FWords; }
  std::vector<TWord> Buffer(int Columns) const {
    return std::vector<TWord>(static_cast<std::size_t>(Columns) * Words());
  }
  TWord* At(TWord* Row, int Column) const { return Row + static_cast<std::size_t>(Column) * Words(); }
  void Copy(const TWord* From, TWord* To) const { std::copy_n(From, Words(), To); }
  bool Fit(const TWord* First, const TWord* Second) const {
    TWord over = 0;
    for (int w = 0; w < Words(); ++w) over |= (First[w] + Second[w] + FPacking.Bias()[w]) & FPacking.Guards()[w];
    return over == 0;
  }
  void Add(const TWord* First, const TWord* Second, TWord* To) const {
    for (int w = 0; w < Words(); ++w) To[w] = First[w] + Second[w];
  }

  const TPiecePacking& FPacking;
  TPieceTable& FUsed;
  const int FWords;
  std::vector<TWord> FSingle;
  std::vector<TWord> FCandidates[2];
  const TWord* FCurrent = nullptr;
  TWord* FRow = nullptr;
  TWord* FBelow = nullptr;
  TWord* FCandidate = nullptr;
  TWord* FFormer = nullptr;
};

template <int kWords>
bool Walk(const TRskfProblem& Problem, TRskfBudget& Budget, TRskfTables& Tables, TRskfCell& Best) {
  TPackedPieces<kWords> pieces(Tables.Packing, Tables.Used, Problem.Raster.SizeL);
  return TRskfWalk<TPackedPieces<kWords>>(Problem, Budget, Tables, pieces).Run(Best);
}

}  // namespace

TPiecePacking::TPiecePacking(const TIntBoxList& Boxes, Int64 PlateArea) {
  int shift = kWordBits;
  for (const TIntBox& box : Boxes) {
    const TWord limit = static_cast<TWord>(LimitOf(box, PlateArea));
    const int bits = static_cast<int>(std::bit_width(limit));
    if (shift + bits + 1 > kWordBits) {
      shift = 0;
      FBias.push_back(0);
      FGuards.push_back(0);
    }
    const TWord mask = (TWord{1} << bits) - 1;
    FFields.push_back({static_cast<int>(FBias.size()) - 1, shift, mask});
    FBias.back() |= (mask - limit) << shift;
    FGuards.back() |= TWord{1} << (shift + bits);
    shift += bits + 1;
  }
}

std::uint16_t TPiecePacking::CountOf(const TWord* Vector, int Box) const {
  const TField& field = FFields[Box];
  return static_cast<std::uint16_t>(Vector[field.Word] >> field.Shift & field.Mask);
}

bool TPiecePacking::Holds(const TWord* Whole, const TWord* Part) const {
  for (std::size_t w = 0; w < FGuards.size(); ++w)
    if ((((Whole[w] | FGuards[w]) - Part[w]) & FGuards[w]) != FGuards[w]) return false;
  return true;
}

bool RunBoundedPass(const TRskfProblem& Problem, TRskfBudget& Budget, TRskfTables& Tables, TRskfCell& Best) {
  const TRaster& raster = Problem.Raster;
  Tables = {};
  Tables.Packing = TPiecePacking(Problem.Boxes, Int64{raster.RasterL.back()} * raster.RasterW.back());
  Tables.Used = TPieceTable(raster.SizeW, raster.SizeL, Tables.Packing.Words());
  switch (Tables.Packing.Words()) {
    case 1:
      return Walk<1>(Problem, Budget, Tables, Best);
    case 2:
      return Walk<2>(Problem, Budget, Tables, Best);
    case 3:
      return Walk<3>(Problem, Budget, Tables, Best);
    case 4:
      return Walk<4>(Problem, Budget, Tables, Best);
    default:
      return Walk<0>(Problem, Budget, Tables, Best);
  }
}

}  // namespace platenest::detail
