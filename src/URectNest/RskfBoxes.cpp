#include "RskfBoxes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "RskfRules.h"
#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/Sort.h"

namespace platenest::detail {

namespace {

// Where one piece ends.
struct TPieceEnd {
  int Row;
  int Column;
  int Box;
};

int CompareBoxes(const TIntBox& Left, const TIntBox& Right) {
  if (Left.A != Right.A) return Sign(Left.A, Right.A);
  if (Left.B != Right.B) return Sign(Left.B, Right.B);
  return Sign(Left.Area, Right.Area);
}

int CompareEnds(const TPieceEnd& Left, const TPieceEnd& Right) {
  return Left.Row != Right.Row ? Sign(Left.Row, Right.Row) : Sign(Left.Column, Right.Column);
}

int CappedSum(int First, int Second) {
  return static_cast<int>(std::min<Int64>(Int64{First} + Second, std::numeric_limits<int>::max()));
}

bool IsPositive(double Length) {
  return std::isfinite(Length) && Length > 0;
}

// 0 for what is no side of a box.
int BoxSide(double Units) {
  return Units > 0 && Units <= kMostBoxUnits ? Ceil<int>(RoundTo(Units, kRskfLengthDigit)) : 0;
}

void CheckRange(const TIntBoxList& Boxes, const TRaster& Raster) {
  if (Raster.SizeL > kMost16Bits || Raster.SizeW > kMost16Bits || Boxes.size() > kMost16Bits)
    throw TRangeError("[Error] TRSKF: more than 65535 raster points or boxes");
  const double plateArea = static_cast<double>(Raster.RasterL.back()) * Raster.RasterW.back();
  double best = 0;  // a plate full of the box that is worth most for its area
  double all = 0;   // all copies of all boxes
  for (const TIntBox& box : Boxes) {
    const double worth = static_cast<double>(box.Area);
    const double copies = plateArea / box.A / box.B;
    best = std::max(best, worth * copies);
    all += std::max(0.0, worth) * std::min(copies, static_cast<double>(box.Amount));
  }
  if (std::min(best, all) > kMostWorth) throw TRangeError("[Error] TRSKF: values too large");
}

}  // namespace

TCopyGrid BundleGrid(double Width, double Height, double ShortSide) {
  constexpr double mostCopies = std::numeric_limits<int>::max();
  const auto copiesAlong = [&](double side) {
    return Ceil<int>(std::min(ShortSide / side / kPartsPerShortSide, mostCopies));
  };
  return {copiesAlong(Width), copiesAlong(Height)};
}

TCopyGrid ShrunkGrid(const TCopyGrid& Grid, double Width, double Height, int Amount) {
  Int64 columns = Grid.Columns;
  Int64 rows = Grid.Rows;
  const Int64 square = Floor<Int64>(std::sqrt(Amount)) + 1;  // the smallest that holds too many
  if (std::min(columns, rows) > square) columns = rows = square;
  while (columns * rows > Amount) {
    if (columns > rows)
      columns = std::max(rows, Amount / rows);
    else if (rows > columns)
      rows = std::max(columns, Amount / columns);
    else
      --(Width > Height ? columns : rows);
  }
  return {static_cast<int>(columns), static_cast<int>(rows)};
}

std::optional<TIntBox> IntBoxOf(const TNestRect& Rect, int Idx, const TRskfUnits& Units, double ShortSide,
                                bool Weighted) {
  const double width = Rect.BoundBox.Width();
  const double height = Rect.BoundBox.Height();
  const double wide = width + Units.Gap;
  const double high = height + Units.Gap;
  if (Rect.Amount <= 0 || !IsPositive(width) || !IsPositive(height) || wide <= 0 || high <= 0) return std::nullopt;

  const TCopyGrid full = BundleGrid(wide, high, ShortSide);
  const bool isTiny = std::max(full.Columns, full.Rows) > 1;
  if (isTiny && Rect.Amount == 1) return std::nullopt;
  const TCopyGrid grid = isTiny ? ShrunkGrid(full, wide, high, Rect.Amount) : TCopyGrid();
  const auto sideOf = [&](double side, int copies) {
    if (isTiny) return BoxSide(Units.ToUnits(copies * (side + Units.Gap)));
    return BoxSide(Units.ToUnits(side) + 2.0 * Units.IntGap);
  };
  const int a = sideOf(width, grid.Columns);
  const int b = sideOf(height, grid.Rows);
  if (a <= 0 || b <= 0) return std::nullopt;

  const Int64 value = Weighted ? Trunc(grid.Columns * Rect.Area * grid.Rows)
                               : Trunc(Rect.BoundBox.Area() * kValuesPerArea * grid.Columns * grid.Rows);
  TIntBox box(a, b, Idx, static_cast<int>(Rect.Amount / grid.Copies()), value);
  if (Weighted) box.Area = value;  // a stated worth of nothing is no area
  box.SmallGroup = isTiny;
  return box;
}

void TRasterBox::AddRect(int AIdx, int ACount, bool ARotate, bool ASmallGroup) {
  if (ACount != 0 && AIdx >= 0) FEntries.push_back({{AIdx, ARotate, ASmallGroup}, ACount});
}

std::optional<TRasterBox::TPiece> TRasterBox::PlaceOne() {
  if (FEntries.empty() || FEntries.back().Count <= 0) return std::nullopt;
  const TPiece piece = FEntries.back().Piece;
  if (--FEntries.back().Count == 0) FEntries.pop_back();
  return piece;
}

void MergeCongruentBoxes(TIntBoxList& Boxes, std::vector<TRasterBox>& RasterBoxes, bool CanRotate, bool Weighted) {
  for (TIntBox& box : Boxes) {
    if (!CanRotate || box.A >= box.B) continue;
    std::swap(box.A, box.B);
    box.Rotate = true;
  }
  SortBy(Boxes, CompareBoxes);

  TIntBoxList kept;
  RasterBoxes.clear();
  for (auto box = Boxes.rbegin(); box != Boxes.rend(); ++box) {
    if (kept.empty() || kept.back().A != box->A || kept.back().B != box->B) {
      kept.push_back(*box);
      RasterBoxes.emplace_back(box->Idx, box->Amount, box->Rotate, box->SmallGroup);
    } else if (!Weighted || box->Area == kept.back().Area) {
      kept.back().Amount = CappedSum(kept.back().Amount, box->Amount);
      RasterBoxes.back().AddRect(box->Idx, box->Amount, box->Rotate, box->SmallGroup);
    }
  }
  std::reverse(kept.begin(), kept.end());
  std::reverse(RasterBoxes.begin(), RasterBoxes.end());
  Boxes = std::move(kept);
}

TRskfPieceRows PieceRowsOf(const TIntBoxList& Boxes, const TRaster& Raster, bool CanRotate) {
  CheckRange(Boxes, Raster);
  std::vector<TPieceEnd> ends;
  const auto enter = [&](int length, int width, int box) {
    if (length <= Raster.RasterL.back() && width <= Raster.RasterW.back())
      ends.push_back({Raster.IndexW[width], Raster.IndexL[length], box});
  };
  for (int b = 0; b < Size(Boxes); ++b) {
    const TIntBox& box = Boxes[b];
    enter(box.A, box.B, b);
    if (CanRotate && box.A != box.B) enter(box.B, box.A, b);
  }
  SortBy(ends, CompareEnds);

  TRskfPieceRows rows;
  for (const TPieceEnd& end : ends) {
    if (rows.Rows.empty() || rows.Rows.back() != end.Row) {
      rows.Rows.push_back(static_cast<std::uint16_t>(end.Row));
      rows.Columns.emplace_back();
      rows.Boxes.emplace_back();
    }
    rows.Columns.back().push_back(static_cast<std::uint16_t>(end.Column));
    rows.Boxes.back().push_back(static_cast<std::uint16_t>(end.Box));
  }
  return rows;
}

}  // namespace platenest::detail
