#include "FillRows.h"

#include <algorithm>
#include <vector>

#include "FillNesters.h"
#include "WholeUnits.h"
#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/Sort.h"

namespace platenest::detail {

namespace {

constexpr int kOpenRows = 200;

struct TLyingPart {
  int Index = 0;
  bool IsTurned = false;
  double Width = 0;
  double Height = 0;
};

TLyingPart Lying(const TFillSizes& Sizes, int Index) {
  const TFillPart& part = Sizes.Parts[Index];
  const bool fits = part.Width <= Sizes.PlateWidth && part.Height <= Sizes.PlateHeight;
  const bool fitsTurned = part.Height <= Sizes.PlateWidth && part.Width <= Sizes.PlateHeight;
  const bool isTurned = part.MayTurn && fitsTurned && (part.Height > part.Width || !fits);
  return {Index, isTurned, isTurned ? part.Height : part.Width, isTurned ? part.Width : part.Height};
}

struct TRow {
  double Bottom = 0;
  double Used = 0;  // with the gap behind the last copy
};

class TRows {
 public:
  explicit TRows(const TFillSizes& Sizes) : FSizes(Sizes), FSlack(FitSlack(Sizes.Decimals)) {}

  void Take(const TLyingPart& Part, int Count) {
    for (int i = std::max(0, Size(FRows) - kOpenRows); i < Size(FRows); ++i) Count -= FillRow(FRows[i], Part, Count);
    while (Count > 0 && FTop + Part.Height <= FSizes.PlateHeight + FSlack) {
      FRows.push_back({FTop, 0});
      FTop += Part.Height + FSizes.Gap;
      Count -= FillRow(FRows.back(), Part, Count);
    }
  }
  TNestedRects Taken() && { return std::move(FLayout); }

 private:
  int FillRow(TRow& Row, const TLyingPart& Part, int Most) {
    const double step = Part.Width + FSizes.Gap;
    const auto room = Floor<Int64>((FSizes.PlateWidth + FSizes.Gap + FSlack - Row.Used) / step);
    const int count = static_cast<int>(std::clamp<Int64>(room, 0, Most));
    const TNestRect record = RecordOf(FSizes, Part.Index, 1);
    for (int i = 0; i < count; ++i) {
      const double x = Row.Used + i * step + (Part.IsTurned ? Part.Width : 0);
      FLayout.emplace_back(record, Part.IsTurned, TPoint2D{x, Row.Bottom});
    }
    Row.Used += count * step;
    return count;
  }

  const TFillSizes& FSizes;
  double FSlack;
  double FTop = 0;
  std::vector<TRow> FRows;
  TNestedRects FLayout;
};

}  // namespace

TNestedRects NestRows(const TFillSizes& Sizes, std::span<const int> Amounts) {
  std::vector<TLyingPart> parts;
  for (int i = 0; i < Size(Amounts); ++i)
    if (Amounts[i] > 0) parts.push_back(Lying(Sizes, i));
  SortBy(parts, [](const TLyingPart& a, const TLyingPart& b) { return Sign(b.Height, a.Height); });
  TRows rows(Sizes);
  for (const TLyingPart& part : parts) rows.Take(part, Amounts[part.Index]);
  TNestedRects layout = std::move(rows).Taken();
  if (Sizes.Decimals) SnapToQuantum(layout, *Sizes.Decimals);
  return layout;
}

}  // namespace platenest::detail
