#include "FillBounds.h"

#include <algorithm>

#include "platenest/foundation/Sort.h"

namespace platenest::detail {

namespace {

struct TShare {
  long double Area = 0;  // of all copies, grown
  long double Worth = 0;
};

int ByDensity(const TShare& Left, const TShare& Right) {
  const long double left = Left.Worth * Right.Area;
  const long double right = Right.Worth * Left.Area;
  return left > right ? -1 : (left < right ? 1 : 0);
}

}  // namespace

double BoundFillByArea(const TFillSizes& Sizes) {
  const long double gap = Sizes.Gap;
  std::vector<TShare> shares;
  for (const TFillPart& part : Sizes.Parts)
    shares.push_back(
        {(part.Width + gap) * (part.Height + gap) * part.Most, static_cast<long double>(part.Worth) * part.Most});
  SortBy(shares, ByDensity);
  long double room = (Sizes.PlateWidth + gap) * (Sizes.PlateHeight + gap);
  long double worth = 0;
  for (const TShare& share : shares) {
    if (share.Area > room) return static_cast<double>(worth + share.Worth * (room / share.Area));
    worth += share.Worth;
    room -= share.Area;
  }
  return static_cast<double>(worth);
}

}  // namespace platenest::detail
