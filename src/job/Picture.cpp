#include <string>
#include <unordered_map>

#include "platenest/job/Run.h"
#include "platenest/layoutcheck/Svg.h"

namespace platenest {

std::string LayoutToSvg(const Result& AResult, int LayoutIndex) {
  if (LayoutIndex < 0 || LayoutIndex >= Size(AResult.Layouts))
    throw TRangeError("[Error] LayoutToSvg: no layout " + std::to_string(LayoutIndex));
  const Layout& layout = AResult.Layouts[LayoutIndex];
  TLayoutPicture picture;
  picture.Title = AResult.Name;
  picture.Units = AResult.Units;
  picture.Width = layout.Width;
  picture.Height = layout.Height;
  picture.Margin = AResult.Margin;
  std::unordered_map<std::string, int> kinds;  // look-up only; the order is that of the result's parts
  const auto kindOf = [&](const std::string& Id) {
    const auto [place, isNew] = kinds.emplace(Id, Size(picture.Kinds));
    if (isNew) picture.Kinds.push_back({Id, ""});
    return place->second;
  };
  for (const PartUse& part : AResult.Parts) kindOf(part.Id);
  for (const Placement& place : layout.Placements) {
    const Box& box = place.Bounds;
    picture.Parts.push_back({{box[0], box[1], box[2], box[3]}, kindOf(place.Part), place.Rotated});
  }
  for (const CirclePlacement& place : layout.Circles) {
    const auto [x, y] = place.Center;
    const double r = place.Radius;
    picture.Parts.push_back({{x - r, y - r, x + r, y + r}, kindOf(place.Part), false});
  }
  const Box& free = layout.FreeBox;
  if (free[2] > free[0] && free[3] > free[1]) picture.Free = TPlacedBox{free[0], free[1], free[2], free[3]};
  return AResult.Kind == JobKind::Circles ? CircleLayoutSvg(picture) : RectLayoutSvg(picture);
}

}  // namespace platenest
