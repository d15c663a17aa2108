#include "PlateCover.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace platenest::detail {

namespace {

// So many plates of one kind, taken or left as a whole.
struct TBundle {
  int Kind = 0;
  int Plates = 0;
  int Holds = 0;
  double Cost = 0;
};

// Bundles of 1, 2, 4... plates, whose sums are all numbers up to the stock, or what Need takes of it.
std::vector<TBundle> BundlesOf(std::span<const TCoverKind> Kinds, int Need) {
  std::vector<TBundle> bundles;
  for (int i = 0; i < Size(Kinds); ++i) {
    const TCoverKind& kind = Kinds[i];
    if (kind.Each <= 0) continue;
    int left = std::min(kind.Count, (Need - 1) / kind.Each + 1);
    for (int some = 1; left > 0; some *= 2) {
      const int plates = std::min(some, left);
      const Int64 holds = std::min<Int64>(Int64{plates} * kind.Each, Need);
      bundles.push_back({i, plates, static_cast<int>(holds), kind.Cost * plates});
      left -= plates;
    }
  }
  return bundles;
}

}  // namespace

std::vector<int> CheapestCover(std::span<const TCoverKind> Kinds, int Need, double MostSteps) {
  if (Need <= 0) return {};
  const std::vector<TBundle> bundles = BundlesOf(Kinds, Need);
  const std::size_t width = static_cast<std::size_t>(Need) + 1;
  if (static_cast<double>(bundles.size()) * static_cast<double>(width) > MostSteps) return {};
  constexpr double kNever = std::numeric_limits<double>::infinity();
  std::vector<TCoverWorth> best(width, {kNever, 0});
  best[0] = {};
  std::vector<bool> isTaken(bundles.size() * width);
  for (std::size_t i = 0; i < bundles.size(); ++i) {
    const TBundle& bundle = bundles[i];
    for (int held = Need; held > 0; --held) {
      const TCoverWorth& before = best[std::max(0, held - bundle.Holds)];
      const TCoverWorth now{before.Cost + bundle.Cost, before.Plates + bundle.Plates};
      if (!(now < best[held])) continue;
      best[held] = now;
      isTaken[i * width + held] = true;
    }
  }
  if (best[Need].Cost == kNever) return {};
  std::vector<int> cover(Kinds.size());
  int held = Need;
  for (std::size_t i = bundles.size(); i-- > 0;) {
    if (!isTaken[i * width + held]) continue;
    cover[bundles[i].Kind] += bundles[i].Plates;
    held = std::max(0, held - bundles[i].Holds);
  }
  return cover;
}

}  // namespace platenest::detail
