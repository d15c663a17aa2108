#include "ThreeBlockScan.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platenest/URectNest/RectRecords.h"
#include "platenest/foundation/Compare.h"
#include "platenest/foundation/Rounding.h"

namespace platenest::detail {

std::array<TBlock, 3> BlocksOf(const TRectInfo& Info, int L, int W) {
  const int major = Info.Major;
  const int minor = Info.Minor;
  if (Info.IsAlongY)
    return {TBlock{0, 0, major, W}, TBlock{major, 0, L - major, minor}, TBlock{major, minor, L - major, W - minor}};
  return {TBlock{0, 0, L, major}, TBlock{0, major, minor, W - major}, TBlock{minor, major, L - minor, W - major}};
}

void Updateinfo(TCandidates& Candidates, const TRectInfo& Info, double MinDelta) {
  const auto beaten =
      std::ranges::find_if(Candidates, [&](const TRectInfo& candidate) { return Info.Value > candidate.Value; });
  if (beaten == Candidates.end() || fEqual(Info.Value, beaten->Value, MinDelta)) return;
  for (auto place = Candidates.end() - 1; place != beaten; --place) {
    const TRectInfo& above = *(place - 1);
    if (fGreat(above.Value, place->Value, MinDelta)) *place = above;
  }
  *beaten = Info;
}

TPointLimits PointLimits(double L, double W, int RectCount) {
  const double sizes = std::max(std::log(std::max(W, L)) - kLogOffset, kLeastLog) * RectCount / kLeastLog;
  const int onLonger = Round<int>(kMostPoints / std::pow(sizes, kPointsExponent));
  const int onShorter = Round<int>(onLonger * std::min(L, W) / std::max(L, W));
  return L >= W ? TPointLimits{onLonger, onShorter} : TPointLimits{onShorter, onLonger};
}

std::vector<int> Thinned(const std::vector<int>& Points, int Limit) {
  const int count = Size(Points);
  if (Limit >= count) return Points;
  std::vector<int> kept;
  for (int j = 0; j < count; ++j) {
    const double due = static_cast<double>(j) * Limit / count;
    if (Size(kept) - kSpreadTol <= due) kept.push_back(Points[j]);
  }
  return kept;
}

TThreeBlockScan::TThreeBlockScan(int L, int W, std::vector<int> RasterL, std::vector<int> RasterW, double MinDelta,
                                 TBlockValues Blocks)
    : FL(L),
      FW(W),
      FRasterL(std::move(RasterL)),
      FRasterW(std::move(RasterW)),
      FMinDelta(MinDelta),
      FBlocks(std::move(Blocks)) {}

double TThreeBlockScan::Calc(std::vector<int> Demand) {
  FRectInfo = {};
  FUsed.fill(std::vector<int>(Demand.size()));
  FBlocks.SetDemand(std::move(Demand));
  Scan(true);
  Scan(false);
  return FRectInfo.front().Value;
}

void TThreeBlockScan::Scan(bool IsAlongY) {
  for (const int major : IsAlongY ? FRasterL : FRasterW) {
    if (RectNestStopped()) return;
    const TBlock first = BlocksOf({IsAlongY, major, 0, 0}, FL, FW)[0];
    const double value = FBlocks.G(first.X, first.Y, FUsed[0]);
    ScanMinor(IsAlongY, major, value);
    FBlocks.GiveBack(FUsed[0]);
  }
}

void TThreeBlockScan::ScanMinor(bool IsAlongY, int Major, double FirstValue) {
  for (const int minor : IsAlongY ? FRasterW : FRasterL) {
    if (RectNestStopped()) return;
    TRectInfo info{IsAlongY, Major, minor, FirstValue};
    const auto blocks = BlocksOf(info, FL, FW);
    for (const int k : {1, 2}) info.Value += FBlocks.G(blocks[k].X, blocks[k].Y, FUsed[k]);
    Updateinfo(FRectInfo, info, FMinDelta);
    for (const int k : {1, 2}) FBlocks.GiveBack(FUsed[k]);
  }
}

}  // namespace platenest::detail
