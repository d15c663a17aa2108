#pragma once

#include <array>
#include <vector>

#include "BlockValues.h"
#include "MultiRectRules.h"

// The scan over all pairs of cuts that part a plate into three blocks:
//
//     +--------+----------+        +-------+---------+
//     |        |   third  |        |second |  third  |
//     | first  +----------+  minor |       |         |
//     |        |          |        +-------+---------+  major
//     |        |  second  |        |      first      |
//     +--------+----------+        +-----------------+
//            major                         minor
//
// Lengths are whole plate units, the gap included.
namespace platenest::detail {

// One candidate layout.
struct TRectInfo {
  bool IsAlongY = false;  // the first cut runs along y, at a raster x
  int Major = 0;          // where the first cut and the second one are
  int Minor = 0;
  double Value = 0;
};

struct TBlock {
  int Left = 0;
  int Bottom = 0;
  int X = 0;  // its sides
  int Y = 0;
};

std::array<TBlock, 3> BlocksOf(const TRectInfo& Info, int L, int W);

// The best candidates, best first; a value of 0 is an empty place.
using TCandidates = std::array<TRectInfo, kCandidates>;

// Puts Info before the first candidate that it beats, unless the two are within MinDelta: then Info is lost, although
// better. Where two kept candidates are within MinDelta, the worse one stays where it is and the better one is written
// over.
void Updateinfo(TCandidates& Candidates, const TRectInfo& Info, double MinDelta);

// How many raster points to keep along x and y.
struct TPointLimits {
  int L = 0;
  int W = 0;

  friend bool operator==(const TPointLimits&, const TPointLimits&) = default;
};

TPointLimits PointLimits(double L, double W, int RectCount);
// At most Limit of the points, evenly spread, the first always among them.
std::vector<int> Thinned(const std::vector<int>& Points, int Limit);

class TThreeBlockScan {
 public:
  // RasterL and RasterW hold the cut positions along x and y.
  TThreeBlockScan(int L, int W, std::vector<int> RasterL, std::vector<int> RasterW, double MinDelta,
                  TBlockValues Blocks);

  // The best value under the demand, whose candidates it leaves in Candidates(). A stop request ends it early, with the
  // candidates found so far. Cost: two knapsacks for each block that is new.
  double Calc(std::vector<int> Demand);

  const TCandidates& Candidates() const { return FRectInfo; }
  const TBlockValues& Blocks() const { return FBlocks; }
  int L() const { return FL; }
  int W() const { return FW; }

 private:
  void Scan(bool IsAlongY);
  void ScanMinor(bool IsAlongY, int Major, double FirstValue);

  int FL;
  int FW;
  std::vector<int> FRasterL;
  std::vector<int> FRasterW;
  double FMinDelta;
  TBlockValues FBlocks;
  std::array<std::vector<int>, 3> FUsed;  // copies that each block has taken from the demand
  TCandidates FRectInfo;
};

}  // namespace platenest::detail
