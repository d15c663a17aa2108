#pragma once

#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "SvgWriter.h"
#include "platenest/layoutcheck/NfpSvg.h"

// What the pictures of shapes share: the frame around them, contours, and the legend below.
namespace platenest::detail {

// Positions in the palette.
inline constexpr int kPartColour = 7;
inline constexpr int kForbiddenColour = 1;
inline constexpr int kAllowedColour = 2;
inline constexpr int kMovingColour = 6;

// The extent of a drawing. Add raises TArgumentError for a coordinate that cannot be drawn.
class TBounds {
 public:
  void Add(const TPoint2D& P);
  void Add(const TPictureContours& Contours, const TPoint2D& Move = {0, 0});
  TPoint2D Extent() const { return High - Low; }
  bool HasExtent() const { return High.X > Low.X && High.Y > Low.Y; }

  TPoint2D Low{HUGE_VAL, HUGE_VAL};
  TPoint2D High{-HUGE_VAL, -HUGE_VAL};
};

struct TLegendRow {
  std::string Colour;
  std::string Text;
};

class TShapePainter {
 public:
  // Raises TArgumentError for bounds without extent.
  TShapePainter(const TBounds& Bounds, std::vector<TLegendRow> Legend);

  // The head of the document and the group that turns the y axis up. Texts are as the user wrote them.
  void Open(std::string_view Title, std::string_view Description, std::string_view Units);
  // The end of a path element: its data. An open line is not led back to its start.
  void Data(const TPictureContours& Contours, const TPoint2D& Move = {0, 0}, bool IsClosed = true);
  // The legend and the end. Texts shrink to fit.
  std::string Close();

  TWriter& Out() { return FOut; }
  double Line() const;  // width of a common line
  double Dot() const;   // radius of a mark

 private:
  const TBounds FBounds;
  const std::vector<TLegendRow> FLegend;
  const double FLong;
  const double FWidth;
  const double FHeight;  // without the legend
  TWriter FOut;
};

}  // namespace platenest::detail
