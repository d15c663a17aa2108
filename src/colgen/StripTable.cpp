#include "StripTable.h"

#include <algorithm>
#include <utility>

namespace platenest::detail {

TStripTable::TStripTable(const TIntBoxList& ABoxes, const TRaster& ARaster, const std::vector<int>& AWidths)
    : FBoxes(ABoxes), FRaster(ARaster), FContentFirst{0} {
  std::vector<std::vector<TStrip>> byWidth;
  byWidth.reserve(AWidths.size());
  for (const int width : AWidths) {
    if (RectNestStopped()) break;
    CalMultiKnapsack(width);
    byWidth.push_back(FOfWidth);
  }
  Compact(byWidth);
  FFrom = {};
}

// Chunks of 1, 2, 4, ... copies and the rest, those that fit at all. A box that fits across both ways lies with its
// shorter side along the strip, otherwise with the longer one, as only that way it fits.
std::vector<TStripTable::TChunk> TStripTable::ChunksFor(int AWidth) const {
  const Int64 longest = FRaster.RasterL.back();
  std::vector<TChunk> chunks;
  for (int b = 0; b < Size(FBoxes); ++b) {
    const TIntBox& box = FBoxes[static_cast<std::size_t>(b)];
    const auto [shortSide, longSide] = std::minmax(box.A, box.B);
    if (AWidth < shortSide) continue;
    const Int64 length = AWidth >= longSide ? shortSide : longSide;
    Int64 chunk = 1;
    for (Int64 rest = box.Amount; rest > 0; rest -= chunk, chunk *= 2) {
      const Int64 count = std::min(chunk, rest);
      if (count * length > longest) continue;
      const int copies = static_cast<int>(count);
      chunks.push_back({static_cast<int>(length) * copies, box.Area * count, {b, copies}});
    }
  }
  return chunks;
}

// Each chunk may begin at any point, so that an entry is the best value of what ends there, wherever it begins. Sums
// that are no raster point are rounded up to one; several beginnings then meet at one end, the first of the best
// counts.
void TStripTable::FillRow(const std::vector<TChunk>& Chunks) {
  const std::size_t points = FRaster.RasterL.size();
  const int longest = FRaster.RasterL.back();
  FRow.assign(points, 0);
  FFrom.assign(points * Chunks.size(), -1);
  for (std::size_t c = 0; c < Chunks.size(); ++c) {
    const TChunk& chunk = Chunks[c];
    int* const from = FFrom.data() + c * points;
    FNextRow = FRow;
    for (std::size_t j = 0; j < points; ++j) {
      const int end = FRaster.RasterL[j] + chunk.Length;
      if (end > longest) break;
      const auto at = static_cast<std::size_t>(FRaster.IndexL[static_cast<std::size_t>(end)]);
      const Int64 value = chunk.Value + FRow[j];
      if (value <= FNextRow[at]) continue;
      FNextRow[at] = value;
      from[at] = static_cast<int>(j);
    }
    std::swap(FRow, FNextRow);
  }
}

int TStripTable::AddContent(const std::vector<TChunk>& Chunks, int Index) {
  const std::size_t points = FRaster.RasterL.size();
  const auto first = static_cast<std::ptrdiff_t>(FParts.size());
  for (std::size_t c = Chunks.size(); c-- > 0;) {
    const int from = FFrom[c * points + static_cast<std::size_t>(Index)];
    if (from < 0) continue;
    const TStripPart& part = Chunks[c].Part;
    if (Size(FParts) > first && FParts.back().Box == part.Box)
      FParts.back().Count += part.Count;
    else
      FParts.push_back(part);
    Index = from;
  }
  std::reverse(FParts.begin() + first, FParts.end());
  FContentFirst.push_back(Size(FParts));
  return Size(FContentFirst) - 2;
}

void TStripTable::CalMultiKnapsack(int AWidth) {
  ++FKnapsacks;
  const std::vector<TChunk> chunks = ChunksFor(AWidth);
  FillRow(chunks);
  TStrip best{0, AWidth, -1};
  FOfWidth.clear();
  for (int j = 0; j < FRaster.SizeL; ++j) {
    const Int64 value = FRow[static_cast<std::size_t>(j)];
    if (value > best.Value) best = {value, AWidth, AddContent(chunks, j)};
    FOfWidth.push_back(best);
  }
}

void TStripTable::Compact(const std::vector<std::vector<TStrip>>& ByWidth) {
  FFirst.reserve(static_cast<std::size_t>(FRaster.SizeL) + 1);
  for (std::size_t j = 0; j < static_cast<std::size_t>(FRaster.SizeL); ++j) {
    FFirst.push_back(Size(FStrips));
    Int64 last = 0;
    for (const std::vector<TStrip>& strips : ByWidth) {
      if (strips[j].Value == last || strips[j].Value == 0) continue;
      FStrips.push_back(strips[j]);
      last = strips[j].Value;
    }
  }
  FFirst.push_back(Size(FStrips));
}

}  // namespace platenest::detail
