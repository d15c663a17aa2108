#include "StandRows.h"

#include <cmath>

namespace platenest::detail {

namespace {

void AddRow(TVPoint2DList& Points, int Count, double X, double Y) {
  for (int i = 0; i < Count; ++i) Points.push_back({X + i, Y});
}

class TLooseWriter {
 public:
  TLooseWriter(const TPlaceInfo& Info, const TRowWidth& Width)
      : FInfo(Info), FCount(Width.Count), FWall(Width.Count - 1 + Width.Rest), FRest(Width.Rest) {}

  TVPoint2DList Run() {
    const auto& [pairs, quads, staggers, none] = FInfo.ChooseTypeNum;
    AddRow(FPoints, FCount, 0, FY);
    for (int i = 0; i < pairs; ++i) WritePair();
    for (int i = 0; i < quads; ++i) WriteQuad();
    for (int i = 0; i < staggers; ++i) WriteStagger();
    if (FInfo.AddMode == 2) AddRow(FPoints, FCount - 1, 0.5, FY + kHexStep);
    if (FInfo.AddMode == 3) AddRow(FPoints, FCount, FRest, FY + FInfo.SPecAdj / 2);
    return std::move(FPoints);
  }

 private:
  void WritePair() {
    AddRow(FPoints, FCount - 1, 0.5, FY + kHexStep);
    AddRow(FPoints, FCount, 0, FY += kSqrt3);
  }

  void WriteStagger() {
    AddRow(FPoints, FCount, FRest, FY + FInfo.SPecAdj / 2);
    AddRow(FPoints, FCount, 0, FY += FInfo.SPecAdj);
  }

  void WriteQuad() {
    const double sink = FInfo.RestWid / 2 - kHexStep;
    const double shift = Leg(sink);
    const double end = FY + sink + Leg(1 - shift + FRest);
    AddRow(FPoints, FCount - 1, shift, FY + sink);
    AddRow(FPoints, 1, FWall, end);
    AddRow(FPoints, FCount - 1, 0, FY += 2 * sink);
    AddRow(FPoints, 1, FWall, end + 1);
    WritePair();
  }

  const TPlaceInfo& FInfo;
  int FCount;
  double FWall;
  double FRest;
  double FY = 0;  // of the last row of n
  TVPoint2DList FPoints;
};

class TTightWriter {
 public:
  TTightWriter(const TPlaceInfo& Info, const TRowWidth& Width)
      : FInfo(Info), FCount(Width.Count), FWall(Width.Count - 1 + Width.Rest) {}

  TVPoint2DList Run() {
    const auto& [hexes, turned, hexAndRest, hexAndTurned] = FInfo.ChooseTypeNum;
    AddRow(FPoints, FCount, 0, FY);
    if (FInfo.NewState) WriteRest();
    for (int i = 0; i < hexes; ++i) WriteHex();
    for (int i = 0; i < turned; ++i) WriteTurned();
    for (int i = 0; i < hexAndRest; ++i) {
      WriteHex();
      WriteRest();
    }
    for (int i = 0; i < hexAndTurned; ++i) {
      WriteHex();
      WriteLowerEnd();
      WriteTurned();
    }
    if (FInfo.AddMode == 2) AddRow(FPoints, FCount, 0.5, FY + kHexStep);
    return std::move(FPoints);
  }

 private:
  void WriteLowerEnd() { AddRow(FPoints, 1, FWall, FY + FInfo.RestDel); }

  // The row that closes a kind with an end.
  void WriteTopRow() {
    AddRow(FPoints, FCount, 0, FY);
    AddRow(FPoints, 1, FWall, FY - FInfo.RestDel);
  }

  void WriteHex() {
    AddRow(FPoints, FCount, 0.5, FY + kHexStep);
    AddRow(FPoints, FCount, 0, FY += kSqrt3);
  }

  void WriteTurned() {
    AddRow(FPoints, FCount, FInfo.SPecAdj2, FY + FInfo.SPecAdj / 2);
    FY += FInfo.SPecAdj;
    WriteTopRow();
  }

  void WriteRest() {
    WriteLowerEnd();
    AddRow(FPoints, FCount - 1, 0.5, FY + FInfo.RestWid / 2);
    FY += FInfo.RestWid;
    WriteTopRow();
  }

  const TPlaceInfo& FInfo;
  int FCount;
  double FWall;
  double FY = 0;  // of the last row of n
  TVPoint2DList FPoints;
};

}  // namespace

TVPoint2DList LooseStack(const TPlaceInfo& Info, const TRowWidth& Width) {
  return TLooseWriter(Info, Width).Run();
}

TVPoint2DList TightStack(const TPlaceInfo& Info, const TRowWidth& Width) {
  return TTightWriter(Info, Width).Run();
}

}  // namespace platenest::detail
