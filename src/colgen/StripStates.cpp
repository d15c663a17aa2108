#include "StripStates.h"

#include <algorithm>
#include <limits>

namespace platenest::detail {

namespace {

constexpr int kNoLimit = std::numeric_limits<int>::max();
constexpr std::size_t kMostCached = 8'000'000;  // counts, of 4 bytes
constexpr std::size_t kMostPlaces = 400'000;    // states whose counts are kept

// For each point the position on the length axis of the largest point not above what is left up to the last one.
std::vector<int> LongestStrips(const TRaster& Raster, const std::vector<int>& Points) {
  std::vector<int> longest;
  longest.reserve(Points.size());
  for (const int point : Points) {
    const int rest = Points.back() - point;
    const int index = Raster.IndexL[static_cast<std::size_t>(rest)];
    longest.push_back(Raster.RasterL[static_cast<std::size_t>(index)] == rest ? index : index - 1);
  }
  return longest;
}

}  // namespace

TStripStates::TStripStates(const TIntBoxList& ABoxes, const TRaster& ARaster, const TStripTable& ATable)
    : FBoxes(ABoxes),
      FRaster(ARaster),
      FTable(ATable),
      FLengthRight(LongestStrips(ARaster, ARaster.RasterL)),
      FLengthUp(LongestStrips(ARaster, ARaster.RasterW)) {
  const std::size_t states = ARaster.RasterL.size() * ARaster.RasterW.size();
  FValues = std::make_unique_for_overwrite<Int64[]>(states);
  FSteps = std::make_unique_for_overwrite<TStep[]>(states);
  FCachedState.assign(std::clamp<std::size_t>(kMostCached / ABoxes.size(), 1, kMostPlaces), -1);
  FCached = std::make_unique_for_overwrite<int[]>(FCachedState.size() * ABoxes.size());
  for (const TIntBox& box : FBoxes) {
    FAmounts.push_back(box.Amount);
    FReach = std::max({FReach, box.A, box.B});
  }
}

// False after a stop; column 0 is always made.
bool TStripStates::MakeReady(int LastColumn) {
  for (; FReady <= LastColumn; ++FReady) {
    if (FReady > 0 && RectNestStopped()) return false;
    std::fill_n(FValues.get() + std::ptrdiff_t{FReady} * SizeW(), SizeW(), 0);
    std::fill_n(FSteps.get() + std::ptrdiff_t{FReady} * SizeW(), SizeW(), TStep{-1, -1});
  }
  return true;
}

void TStripStates::Run() {
  MakeReady(0);
  for (int i = 0; i < FRaster.SizeL && !RectNestStopped(); ++i) {
    const Int64 reach = Int64{FRaster.RasterL[static_cast<std::size_t>(i)]} + FReach;
    if (!MakeReady(ColumnAt(reach))) break;
    for (int j = 0; j < FRaster.SizeW; ++j) Visit(i, j);
  }
  FindBest();
}

void TStripStates::FindBest() {
  const Int64* const first = FValues.get();
  FBest = static_cast<int>(std::max_element(first, first + std::ptrdiff_t{FReady} * SizeW()) - first);
}

// A dominated state takes over the value alone and keeps its own way here: nothing continues from it.
void TStripStates::Visit(int I, int J) {
  const int at = I * SizeW() + J;
  Int64& value = FValues[static_cast<std::size_t>(at)];
  for (const int before : {J > 0 ? at - 1 : -1, I > 0 ? at - SizeW() : -1}) {
    if (before < 0 || FValues[static_cast<std::size_t>(before)] < value) continue;
    value = FValues[static_cast<std::size_t>(before)];
    return;
  }
  ++FSpread;
  const TStep step = FSteps[static_cast<std::size_t>(at)];
  const bool stackedUp = step.From >= I * SizeW();
  const int lastWidth = step.Strip < 0 ? kNoLimit : FTable[step.Strip].Width;
  SpreadVertical(at, I, J, stackedUp ? kNoLimit : lastWidth);
  SpreadHorizontal(at, I, J, stackedUp ? lastWidth : kNoLimit);
}

void TStripStates::SpreadVertical(int At, int I, int J, int MostWidth) {
  const int room = std::min(FRaster.RasterL.back() - FRaster.RasterL[static_cast<std::size_t>(I)], MostWidth);
  const int past = FTable.Past(FLengthUp[static_cast<std::size_t>(J)]);
  for (int strip = FTable.First(FLengthUp[static_cast<std::size_t>(J)]); strip < past; ++strip) {
    if (FTable[strip].Width > room) return;
    const int x = FRaster.RasterL[static_cast<std::size_t>(I)] + FTable[strip].Width;
    Raise(At, FRaster.IndexL[static_cast<std::size_t>(x)] * SizeW() + J, strip);
  }
}

void TStripStates::SpreadHorizontal(int At, int I, int J, int MostWidth) {
  const int room = std::min(FRaster.RasterW.back() - FRaster.RasterW[static_cast<std::size_t>(J)], MostWidth);
  const int past = FTable.Past(FLengthRight[static_cast<std::size_t>(I)]);
  for (int strip = FTable.First(FLengthRight[static_cast<std::size_t>(I)]); strip < past; ++strip) {
    if (FTable[strip].Width > room) return;
    const int y = FRaster.RasterW[static_cast<std::size_t>(J)] + FTable[strip].Width;
    Raise(At, I * SizeW() + FRaster.IndexW[static_cast<std::size_t>(y)], strip);
  }
}

void TStripStates::Raise(int At, int Target, int Strip) {
  const Int64 value = FValues[static_cast<std::size_t>(At)];
  Int64& target = FValues[static_cast<std::size_t>(Target)];
  if (value + FTable[Strip].Value <= target) return;
  const Int64 trueValue = value + TrueValue(At, FTable[Strip]);
  if (trueValue <= target) return;
  target = trueValue;
  FSteps[static_cast<std::size_t>(Target)] = {At, Strip};
}

Int64 TStripStates::TrueValue(int At, const TStrip& Strip) {
  if (FLeftAt != At) CountWhatIsLeft(At);
  Int64 value = 0;
  for (const TStripPart& part : FTable.Parts(Strip)) {
    const auto box = static_cast<std::size_t>(part.Box);
    value += FBoxes[box].Area * std::clamp(FLeft[box], 0, part.Count);
  }
  return value;
}

// Goes back to the last state whose counts are still at hand, or to the first of all.
void TStripStates::CountWhatIsLeft(int At) {
  FLeftAt = At;
  FChain.clear();
  int from = At;
  while (FSteps[static_cast<std::size_t>(from)].Strip >= 0 && FCachedState[CachePlace(from)] != from) {
    FChain.push_back(FSteps[static_cast<std::size_t>(from)].Strip);
    from = FSteps[static_cast<std::size_t>(from)].From;
  }
  const auto count = static_cast<std::ptrdiff_t>(FBoxes.size());
  const auto placeOf = [this, count](int state) {
    return FCached.get() + static_cast<std::ptrdiff_t>(CachePlace(state)) * count;
  };
  if (FCachedState[CachePlace(from)] == from)
    FLeft.assign(placeOf(from), placeOf(from) + count);
  else
    FLeft = FAmounts;
  for (const int strip : FChain) {
    for (const TStripPart& part : FTable.Parts(FTable[strip])) FLeft[static_cast<std::size_t>(part.Box)] -= part.Count;
  }
  std::copy(FLeft.begin(), FLeft.end(), placeOf(At));
  FCachedState[CachePlace(At)] = At;
}

std::vector<TStripPlacement> TStripStates::GenerateNestedRects() const {
  std::vector<int> left = FAmounts;
  std::vector<TStripPlacement> placed;
  for (int at = FBest; FSteps[static_cast<std::size_t>(at)].Strip >= 0; at = FSteps[static_cast<std::size_t>(at)].From)
    DrawStrip(at, left, placed);
  return placed;
}

void TStripStates::DrawStrip(int At, std::vector<int>& Left, std::vector<TStripPlacement>& Placed) const {
  const TStep& step = FSteps[static_cast<std::size_t>(At)];
  const TStrip& strip = FTable[step.Strip];
  const bool up = step.From / SizeW() == At / SizeW();  // the strip runs to the right, the next one lies above it
  int x = FRaster.RasterL[static_cast<std::size_t>(step.From / SizeW())];
  int y = FRaster.RasterW[static_cast<std::size_t>(step.From % SizeW())];
  for (const TStripPart& part : FTable.Parts(strip)) {
    const TIntBox& box = FBoxes[static_cast<std::size_t>(part.Box)];
    const bool acrossB = box.A > strip.Width || (box.A < box.B && box.B <= strip.Width);
    int& left = Left[static_cast<std::size_t>(part.Box)];
    for (int copy = 0; copy < part.Count && left > 0; ++copy, --left) {
      Placed.push_back({part.Box, up != acrossB, x, y});
      (up ? x : y) += acrossB ? box.A : box.B;
    }
  }
}

}  // namespace platenest::detail
