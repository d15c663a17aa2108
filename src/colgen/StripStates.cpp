#include "StripStates.h"

#include <algorithm>
#include <limits>

namespace platenest::detail {

namespace {

constexpr int kNoLimit = std::numeric_limits<int>::max();

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
      FStates(ARaster.RasterL.size() * ARaster.RasterW.size()),
      FLengthRight(LongestStrips(ARaster, ARaster.RasterL)),
      FLengthUp(LongestStrips(ARaster, ARaster.RasterW)) {}

void TStripStates::Run() {
  for (int i = 0; i < FRaster.SizeL && !RectNestStopped(); ++i) {
    for (int j = 0; j < FRaster.SizeW; ++j) Visit(i, j);
  }
  FindBest();
}

void TStripStates::FindBest() {
  const auto best = std::max_element(FStates.begin(), FStates.end(),
                                     [](const TState& a, const TState& b) { return a.Value < b.Value; });
  FBest = static_cast<int>(best - FStates.begin());
}

// A dominated state takes over the value alone and keeps its own way here: nothing continues from it.
void TStripStates::Visit(int I, int J) {
  const int at = I * SizeW() + J;
  TState& state = FStates[static_cast<std::size_t>(at)];
  for (const int before : {J > 0 ? at - 1 : -1, I > 0 ? at - SizeW() : -1}) {
    if (before < 0 || FStates[static_cast<std::size_t>(before)].Value < state.Value) continue;
    state.Value = FStates[static_cast<std::size_t>(before)].Value;
    return;
  }
  ++FSpread;
  const bool stackedUp = state.From >= I * SizeW();
  const int lastWidth = state.Strip < 0 ? kNoLimit : FTable[state.Strip].Width;
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
  const Int64 value = FStates[static_cast<std::size_t>(At)].Value;
  TState& target = FStates[static_cast<std::size_t>(Target)];
  if (value + FTable[Strip].Value <= target.Value) return;
  const Int64 trueValue = value + TrueValue(At, FTable[Strip]);
  if (trueValue > target.Value) target = {trueValue, At, Strip};
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

void TStripStates::CountWhatIsLeft(int At) {
  FLeftAt = At;
  FLeft.clear();
  for (const TIntBox& box : FBoxes) FLeft.push_back(box.Amount);
  while (FStates[static_cast<std::size_t>(At)].Strip >= 0) {
    const TState& state = FStates[static_cast<std::size_t>(At)];
    for (const TStripPart& part : FTable.Parts(FTable[state.Strip]))
      FLeft[static_cast<std::size_t>(part.Box)] -= part.Count;
    At = state.From;
  }
}

std::vector<TStripPlacement> TStripStates::GenerateNestedRects() const {
  std::vector<int> left;
  for (const TIntBox& box : FBoxes) left.push_back(box.Amount);
  std::vector<TStripPlacement> placed;
  for (int at = FBest; FStates[static_cast<std::size_t>(at)].Strip >= 0;
       at = FStates[static_cast<std::size_t>(at)].From)
    DrawStrip(at, left, placed);
  return placed;
}

void TStripStates::DrawStrip(int At, std::vector<int>& Left, std::vector<TStripPlacement>& Placed) const {
  const TState& state = FStates[static_cast<std::size_t>(At)];
  const TStrip& strip = FTable[state.Strip];
  const bool up = state.From / SizeW() == At / SizeW();  // the strip runs to the right, the next one lies above it
  int x = FRaster.RasterL[static_cast<std::size_t>(state.From / SizeW())];
  int y = FRaster.RasterW[static_cast<std::size_t>(state.From % SizeW())];
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
