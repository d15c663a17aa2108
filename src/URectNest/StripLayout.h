#pragma once

#include <vector>

#include "platenest/foundation/Types.h"

namespace platenest::detail {

// What the strips are cut for: a rectangle in grown lengths, which decide what fits, and in plain ones, which decide
// where a copy ends.
struct TStripPart {
  double Thickness;  // long side, grown
  double Pitch;      // short side, grown
  bool IsVertical;   // higher than wide
  double Width;      // plain
  double Height;
};

// The copies of the best strips on a plate, gathered in columns of one right edge.
//
// A column is one left strip, or one copy of each of several bottom strips that follow each other. What is laid later
// lies above or to the right of what was there before, so columns that share their right edge never interleave in y,
// and columns sorted by right edge and lowest copy give the order of all copies by right edge, then y.
class TStripLayout {
 public:
  struct TColumn {
    double X;      // left edge of the copies
    double Right;  // their right edge
    bool Turned;
    bool IsStrip;  // a left strip; otherwise across bottom strips
    int Strip;     // the left strip, or the lowest of the bottom strips
    int Count;
  };

  // W and H are those of the grown plate.
  TStripLayout(double W, double H, const TStripPart& Part);

  Int64 Count() const { return FCount; }
  // In ascending order.
  const std::vector<TColumn>& Columns() const { return FColumns; }
  // Bottom edge of the copy at Place of a column, counted from below.
  double Y(const TColumn& Column, int Place) const {
    return Column.IsStrip ? FStripY[Index(Column.Strip)] + Place * FPitch : FStripY[Index(Column.Strip + Place)];
  }

 private:
  static std::size_t Index(int Strip) { return static_cast<std::size_t>(Strip); }
  void AddLeft(const TStripPart& Part, double X, int Strip, double Room);
  void AddBottom(const TStripPart& Part, double X, int FirstStrip, int LastStrip, double Room);

  std::vector<double> FStripY;
  std::vector<TColumn> FColumns;
  double FPitch;
  Int64 FCount = 0;
};

}  // namespace platenest::detail
