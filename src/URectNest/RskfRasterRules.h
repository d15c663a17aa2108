#pragma once

#include <cmath>

#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/Types.h"

// How fine the raster of a run may be.
namespace platenest::detail {

// Milliseconds of a budget that buy no cells.
inline constexpr double kBaseBudgetMs = 5000;
// Cells of a square raster as high as the plate, with and without piece vectors.
inline constexpr double kBoundedCells = 9'000'000;
inline constexpr double kUnboundedCells = 36'000'000;
// Points on one axis: positions are kept in 16 bits.
inline constexpr int kMostPoints = 20000;
// The share of the free memory that is not reached.
inline constexpr double kMemoryShare = 0.8;
// Bytes of a cell with piece vectors: per box and besides.
inline constexpr double kBytesPerBox = 4;
inline constexpr double kBytesPerCell = 32;
// Bytes per unit of length and width that it takes to build a raster, index tables and working lists together.
inline constexpr double kBytesPerUnit = 16;
// A longer plate has no raster.
inline constexpr int kMostRasterUnits = 1'000'000'000;
// What counts as free where the system does not tell.
inline constexpr Int64 kBytesIfUnknown = Int64{1} << 30;

struct TRasterNeed {
  int SizeL = 0;
  int SizeW = 0;
  int BoxCount = 0;
  bool AmountLimit = false;  // each cell holds a piece vector
};

inline double UsableMemory(Int64 FreeBytes) {
  return static_cast<double>(FreeBytes > 0 ? FreeBytes : kBytesIfUnknown);
}

// How much longer than the least budget a run may take, 1 without a budget. BoxCount is above 0.
inline double TimeFactor(double TimeLimitMs, int BoxCount) {
  const double spare = TimeLimitMs - kBaseBudgetMs;
  return spare > 0 ? std::sqrt(spare) / BoxCount : 1;
}

inline double CellLimit(bool AmountLimit, double Factor) {
  return AmountLimit ? RoundHalfEven(kBoundedCells * Factor) : kUnboundedCells;
}

// The share of the memory that the cells take. Without piece vectors a cell counts as one byte, so the tables of an
// accepted raster may be larger than what is free.
inline double MemoryRatio(const TRasterNeed& Need, Int64 FreeBytes) {
  const double cells = (Need.SizeL + 1.0) * (Need.SizeW + 3.0);
  const double bytes = Need.AmountLimit ? kBytesPerBox * Need.BoxCount + kBytesPerCell : 1;
  return cells * bytes / UsableMemory(FreeBytes);
}

inline bool IsRasterAccepted(const TRasterNeed& Need, Int64 FreeBytes, double Factor) {
  const double cells = (Need.SizeW + 1.0) * (Need.SizeW + 1.0);
  return MemoryRatio(Need, FreeBytes) < kMemoryShare && cells <= CellLimit(Need.AmountLimit, Factor) &&
         Need.SizeL <= kMostPoints && Need.SizeW <= kMostPoints;
}

// There is memory to build a raster of L by W units, L not below W, at all.
inline bool CanBuildRaster(int L, int W, Int64 FreeBytes) {
  return L <= kMostRasterUnits && kBytesPerUnit * (1.0 * L + W) < kMemoryShare * UsableMemory(FreeBytes);
}

// The next coarser unit: 10, 5, 2, 1, then -2, -4, -8, where a negative value divides.
constexpr int CoarserAmplification(int Amp) {
  if (Amp < 0) return Amp * 2;
  return Amp == 1 ? -2 : Amp / 2;
}

}  // namespace platenest::detail
