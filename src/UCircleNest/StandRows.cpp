#include "StandRows.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace platenest::detail {

namespace {

double Leg(double OtherLeg) {
  return OtherLeg < 1 ? std::sqrt(1 - OtherLeg * OtherLeg) : 0;
}

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
    AddRow(FPoints, FCount, 0, FY += kHexDouble);
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

enum class TTightPiece { Hex, Turned, Rest };

// From the bottom up. Turned pieces of their own join a run that is there for its ends already.
std::vector<TTightPiece> TightPieces(const TPlaceInfo& Info) {
  const auto& [hex, turned, hexRest, hexTurned] = Info.ChooseTypeNum;
  std::vector<TTightPiece> pieces;
  if (Info.NewState) {
    pieces.push_back(TTightPiece::Rest);
    pieces.insert(pieces.end(), turned, TTightPiece::Turned);
  }
  pieces.insert(pieces.end(), hex, TTightPiece::Hex);
  for (int i = 0; i < hexRest; ++i) pieces.insert(pieces.end(), {TTightPiece::Hex, TTightPiece::Rest});
  for (int i = 0; i < hexTurned; ++i) pieces.insert(pieces.end(), {TTightPiece::Hex, TTightPiece::Turned});
  if (!Info.NewState) pieces.insert(pieces.end(), turned, TTightPiece::Turned);
  return pieces;
}

class TTightWriter {
 public:
  TTightWriter(const TPlaceInfo& Info, const TRowWidth& Width)
      : FInfo(Info), FCount(Width.Count), FRest(Width.Rest), FPieces(TightPieces(Info)) {}

  TVPoint2DList Run() {
    // A run of turned pieces alone has one end more than is counted.
    const bool oneTooMany = !FInfo.NewState && FInfo.ChooseTypeNum[2] + FInfo.ChooseTypeNum[3] == 0;
    for (int i = 0; i <= Size(FPieces); ++i) {
      AddRow(FPoints, FCount, 0, FY);
      if (!oneTooMany || i != FInfo.ChooseTypeNum[0]) WriteEnd(i);
      if (i < Size(FPieces)) WritePiece(FPieces[i]);
    }
    if (FInfo.AddMode == 2) AddRow(FPoints, FCount, 0.5, FY + kHexStep);
    return std::move(FPoints);
  }

 private:
  void WriteEnd(int Row) {
    const bool isFreeAbove = Row < Size(FPieces) && FPieces[Row] != TTightPiece::Hex;
    const bool isFreeBelow = Row > 0 && FPieces[Row - 1] != TTightPiece::Hex;
    if (isFreeAbove || isFreeBelow)
      AddRow(FPoints, 1, FCount - 1 + FRest, FY + (isFreeAbove ? FInfo.RestDel : -FInfo.RestDel));
  }

  void WritePiece(TTightPiece Piece) {
    if (Piece == TTightPiece::Hex) {
      AddRow(FPoints, FCount, 0.5, FY + kHexStep);
      FY += kHexDouble;
    } else if (Piece == TTightPiece::Turned) {
      AddRow(FPoints, FCount, 0.5 * FRest - kHexStep * FInfo.RestDel, FY + FInfo.SPecAdj / 2);
      FY += FInfo.SPecAdj;
    } else {
      AddRow(FPoints, FCount - 1, 0.5, FY + FInfo.RestWid / 2);
      FY += FInfo.RestWid;
    }
  }

  const TPlaceInfo& FInfo;
  int FCount;
  double FRest;
  std::vector<TTightPiece> FPieces;
  double FY = 0;
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
