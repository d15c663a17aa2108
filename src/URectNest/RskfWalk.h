#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "RskfPass.h"
#include "RskfTables.h"

namespace platenest::detail {

// The walk of both passes: row by row, column by column through the cells that pieces can reach. A cell gets the best
// of what it inherits from the cells below and to the left, of a piece of its own and of the cuts that came to it; then
// it is cut against the cells before it and hands each improvement on to the cell that holds both sides.
//
// Cuts along the length need the finished row, so their results are candidates of a column: they count in this row and
// in those above, and two rows of them take turns. A column starts when it first has a layout that no column to its
// left has, a row is cut when it first has one that no row below has; lists of such positions are all that cuts are
// tried at. Only strict improvements are taken.
//
// TPieces says what is known of the pieces in a cell: nothing, or a vector that must keep the limits.
template <class TPieces>
class TRskfWalk {
 public:
  TRskfWalk(const TRskfProblem& Problem, TRskfBudget& Budget, TRskfTables& Tables, TPieces& Pieces)
      : FProblem(Problem),
        FBudget(Budget),
        FTables(Tables),
        FPieces(Pieces),
        FLengths(Problem.Raster.RasterL.data()),
        FWidths(Problem.Raster.RasterW.data()),
        FColumns(Problem.Raster.SizeL),
        FRows(Problem.Raster.SizeW) {
    if (FColumns > kMost16Bits || FRows > kMost16Bits)
      throw TRangeError("[Error] TRSKF: more than 65535 raster points");
    FTables.F = TGrid<Int64>(FRows, FColumns);
    FTables.X = TGrid<std::uint16_t>(FRows, FColumns);
    FTables.Y = TGrid<std::uint16_t>(FColumns, FRows);
    FCandidates = TGrid<Int64>(2, FColumns);
    FCutsOf.resize(FColumns);
    FXList.reserve(FColumns);
    FColumnOn.resize(FColumns);
    FActiveCol.resize(FColumns);
    FActiveRow.resize(FRows);
    for (const int row : Problem.Z) FActiveRow[row] = 1;
  }

  bool Run(TRskfCell& Best) {
    for (int row = 1; row < FRows; ++row) {
      if (FBudget.IsSpent()) return false;
      if (FActiveRow[row] == 0) continue;
      BeginRow(row);
      for (int column = 1; column < FColumns; ++column) {
        if (FBudget.IsSpent()) return false;
        if (FActiveCol[column] != 0 && !VisitColumn(column)) return false;
      }
      if (FRowCut) EndCutRow();
    }
    Best = {FBestCol, FBestRow};
    return true;
  }

 private:
  void BeginRow(int Row) {
    FRow = Row;
    FRowCut = false;
    FBestCol = 0;
    FXList.clear();
    FValue = FTables.F.Row(Row);
    FBelow = FTables.F.Row(FBestRow);
    FCutX = FTables.X.Row(Row);
    FBelowX = FTables.X.Row(FBestRow);
    FCandidate = FCandidates.Row(FBuffer);
    FFormer = FCandidates.Row(1 - FBuffer);
    const int plateW = FWidths[FRows - 1];
    FYLimit = FProblem.Raster.IndexW[plateW - FWidths[Row]];
    FPieces.BeginRow(Row, FBestRow, FBuffer);

    FChecksPieces = FNextPieceRow < FProblem.Z.size() && FProblem.Z[FNextPieceRow] == Row;
    if (!FChecksPieces) return;
    FPieceRow = FNextPieceRow++;
    FNextPiece = 0;
    for (const int column : FProblem.U[FPieceRow]) FActiveCol[column] = 1;
  }

  void EndCutRow() {
    FCutRows.push_back(FRow);
    FBestRow = FRow;
    FBuffer = 1 - FBuffer;
  }

  // The value of the best single piece that ends in this cell, 0 for none; of equals the first. FBox is its box.
  Int64 PieceValue(int Column) {
    Int64 value = 0;
    const auto& columns = FProblem.U[FPieceRow];
    while (FChecksPieces && columns[FNextPiece] == Column) {
      const int box = FProblem.T[FPieceRow][FNextPiece];
      if (FProblem.Boxes[box].Area > value) {
        value = FProblem.Boxes[box].Area;
        FBox = box;
      }
      FChecksPieces = ++FNextPiece < columns.size();
    }
    return value;
  }

  // False when the budget is spent.
  bool VisitColumn(int Column) {
    const Int64 piece = FChecksPieces ? PieceValue(Column) : 0;
    const Int64 left = FValue[FBestCol];
    const Int64 best = std::max({FBelow[Column], left, FValue[Column], FCandidate[Column], piece});
    if (piece > 0 && piece == best) FPieces.TakeSingle(FBox);
    if (FFormer[Column] > FCandidate[Column]) {
      FCandidate[Column] = FFormer[Column];
      FPieces.KeepCandidate(Column);
      FCutX[Column] = FBelowX[Column];
    }
    if (left == best) {
      FCutX[Column] = 0;
      FPieces.TakeLeft(FBestCol);
    } else if (FCandidate[Column] < best) {
      FCutX[Column] = static_cast<std::uint16_t>(Column);
      FXList.push_back(FCutX[Column]);
    }
    if (FColumnOn[Column] == 0) {
      if (FCutX[Column] == 0) {
        FActiveCol[Column] = 0;
        return true;
      }
      StartColumn(Column);
    }
    return FillCell(Column, best);
  }

  // A new column looks like its left neighbour in the rows before this one.
  void StartColumn(int Column) {
    FColumnOn[Column] = 1;
    const std::uint16_t* const leftY = FTables.Y.Row(FBestCol);
    std::uint16_t* const cutY = FTables.Y.Row(Column);
    for (const int row : FCutRows) {
      const Int64 value = FTables.F.At(row, FBestCol);
      FTables.F.At(row, Column) = value;
      if (value > 0) FPieces.CopyCell(row, FBestCol, Column);
      FTables.X.At(row, Column) = 0;
      cutY[row] = leftY[row];
    }
    FCutsOf[Column] = FCutsOf[FBestCol];
    if (!FCutsOf[Column].empty() && FCutsOf[Column].back() == FRow) FCutsOf[Column].pop_back();
  }

  bool FillCell(int Column, Int64 Best) {
    std::uint16_t& cutY = FTables.Y.At(Column, FRow);
    if (FValue[Column] < FValue[FBestCol]) {
      FValue[Column] = FValue[FBestCol];
      FPieces.StoreLeft(FBestCol, Column);
      cutY = FTables.Y.At(FBestCol, FRow);
    }
    if (FBelow[Column] == Best) {
      cutY = 0;
      FPieces.TakeBelow(Column);
    } else if (FValue[Column] < Best) {
      if (FCandidate[Column] == Best) FPieces.TakeCandidate(Column);
      cutY = static_cast<std::uint16_t>(FRow);
      FCutsOf[Column].push_back(cutY);
    }
    if (FValue[Column] < Best) FPieces.Store(Column);
    FValue[Column] = Best;
    if (cutY != 0) FRowCut = true;

    if (FBudget.IsSpent()) return false;
    if (FRowCut) CutAlongLength(Column, Best);
    if (FBudget.IsSpent()) return false;
    CutAlongWidth(Column, Best, std::min<int>(cutY, FYLimit));
    FBestCol = Column;
    return true;
  }

  void CutAlongLength(int Column, Int64 Best) {
    const int* const indexL = FProblem.Raster.IndexL.data();
    const int plateL = FLengths[FColumns - 1];
    const int length = FLengths[Column];
    const int limit = std::min<int>(FCutX[Column], indexL[plateL - length]);
    for (const int cut : FXList) {
      if (cut > limit || FLengths[cut] + length > plateL) break;
      const Int64 value = FValue[cut] + Best;
      const int target = indexL[FLengths[cut] + length];
      if (FCandidate[target] >= value || !FPieces.JoinAlongLength(cut, Column, target)) continue;
      FCandidate[target] = value;
      FCutX[target] = static_cast<std::uint16_t>(cut);
      FActiveCol[target] = 1;
    }
  }

  void CutAlongWidth(int Column, Int64 Best, int Limit) {
    const int* const indexW = FProblem.Raster.IndexW.data();
    const int plateW = FWidths[FRows - 1];
    const int width = FWidths[FRow];
    for (const int cut : FCutsOf[Column]) {
      if (cut > Limit || FWidths[cut] + width > plateW) break;
      const Int64 value = FTables.F.At(cut, Column) + Best;
      const int target = indexW[FWidths[cut] + width];
      Int64& there = FTables.F.At(target, Column);
      if (there >= value || !FPieces.JoinAlongWidth(cut, Column, target)) continue;
      there = value;
      FTables.Y.At(Column, target) = static_cast<std::uint16_t>(cut);
      FActiveRow[target] = 1;
    }
  }

  const TRskfProblem& FProblem;
  TRskfBudget& FBudget;
  TRskfTables& FTables;
  TPieces& FPieces;
  const int* const FLengths;
  const int* const FWidths;
  const int FColumns;  // of the raster
  const int FRows;

  TGrid<Int64> FCandidates;  // best values that cuts along the length gave a column, in this cut row and the last one
  std::vector<std::vector<std::uint16_t>> FCutsOf;  // by column: rows to cut at
  std::vector<std::uint16_t> FXList;                // columns to cut the present row at
  std::vector<char> FColumnOn;
  std::vector<char> FActiveCol;
  std::vector<char> FActiveRow;
  std::vector<int> FCutRows;
  int FBestCol = 0;  // the last column at work in this row
  int FBestRow = 0;  // the last row that was cut
  int FBuffer = 0;

  int FRow = 0;
  bool FRowCut = false;
  int FYLimit = 0;  // the highest row whose width the present row leaves
  Int64* FValue = nullptr;
  Int64* FBelow = nullptr;
  std::uint16_t* FCutX = nullptr;
  std::uint16_t* FBelowX = nullptr;
  Int64* FCandidate = nullptr;
  Int64* FFormer = nullptr;
  bool FChecksPieces = false;
  std::size_t FNextPieceRow = 0;
  std::size_t FPieceRow = 0;
  std::size_t FNextPiece = 0;
  int FBox = 0;
};

}  // namespace platenest::detail
