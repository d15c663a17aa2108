#include "StandRows.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace platenest::detail {

namespace {

// Noise of sums over thousands of rows, far below any tolerance of a layout.
constexpr double kZoneTol = 1e-10;

double Leg(double OtherLeg) {
  return OtherLeg < 1 ? std::sqrt(1 - OtherLeg * OtherLeg) : 0;
}

void AddRow(TVPoint2DList& Points, int Count, double X, double Y) {
  for (int i = 0; i < Count; ++i) Points.push_back({X + i, Y});
}

class TLooseWriter {
 public:
  TLooseWriter(const TPlaceInfo& Info, const TRowWidth& Width)
      : FInfo(Info),
        FCount(Width.Count),
        FRest(Width.Rest),
        FPairs(Info.ChooseTypeNum[0]),
        FQuads(Info.ChooseTypeNum[1]),
        FStaggers(Info.ChooseTypeNum[2]),
        FForm(LooseForm(Width.Rest, Info.RestWid)) {}

  TVPoint2DList Run() {
    if (FQuads == 0)
      WritePlain();
    else
      WriteQuads();
    if (FInfo.AddMode == 2) WriteHexTop();
    if (FInfo.AddMode == 3) AddRow(FPoints, FCount, FQuads == 0 ? FRest : 0, FY + FForm.Stagger);
    return std::move(FPoints);
  }

 private:
  struct TZone {  // of the wall, which a row's nearest circle keeps free
    double Center = 0;
    double Half = 0;
  };

  void WritePlain() {
    AddRow(FPoints, FCount, 0, FY);
    for (int i = 0; i < FPairs; ++i) {
      AddRow(FPoints, FCount - 1, 0.5, FY + kHexStep);
      AddRow(FPoints, FCount, 0, FY += kHexDouble);
    }
    for (int i = 0; i < FStaggers; ++i) {
      AddRow(FPoints, FCount, FRest, FY + FForm.Stagger);
      AddRow(FPoints, FCount, 0, FY += 2 * FForm.Stagger);
    }
  }

  void WriteQuads() {
    for (int i = 0; i < FStaggers; ++i) {
      AddRow(FPoints, FCount, FRest, FY);
      AddRow(FPoints, FCount, 0, FY + FForm.Stagger);
      FY += 2 * FForm.Stagger;
    }
    const double bottom = FY;
    WriteOuterRow();
    for (int i = 0; i < FQuads; ++i) WriteQuad(i == FQuads - 1);
    WriteWallColumn(bottom + FForm.Lift);
  }

  void WriteOuterRow() {
    AddRow(FPoints, FCount - 1, FForm.Shift, FY);
    FZones.push_back({FY, FForm.Lift});
  }

  void WriteInnerRow(double Y) {
    AddRow(FPoints, FCount - 1, 0.5, Y);
    FZones.push_back({Y, FForm.Reach});
  }

  void WriteQuad(bool IsLast) {
    AddRow(FPoints, FCount - 1, 0, FY + FForm.Sink);
    WriteInnerRow(FY + FForm.Quad / 2);
    if (IsLast) WriteCore();
    FY += FForm.Quad;
    AddRow(FPoints, FCount - 1, 0, FY - FForm.Sink);
    WriteOuterRow();
  }

  void WriteCore() {
    for (int i = 0; i < FPairs; ++i) {
      AddRow(FPoints, FCount - 1, 0, FY + FForm.Quad / 2 + kHexStep);
      WriteInnerRow(FY + FForm.Quad / 2 + kHexDouble);
      FY += kHexDouble;
    }
    if (FPairs == 0 && !TopMakesWay()) FY += LooseExcess(FForm, false);
  }

  // One circle for each row but the inner ones, from the bottom up, each as low as it can stand.
  void WriteWallColumn(double Y) {
    auto zone = FZones.begin();
    for (int i = 0; i <= FPairs + 3 * FQuads; ++i) {
      for (; zone != FZones.end() && zone->Center - zone->Half + kZoneTol < Y; ++zone)
        Y = std::max(Y, zone->Center + zone->Half);
      AddRow(FPoints, 1, FCount - 1 + FRest, Y);
      Y += 1;
    }
  }

  bool TopMakesWay() const { return FInfo.AddMode == 2 && FPairs == 0 && FQuads > 0 && TopRowMakesWay(FForm); }

  void WriteHexTop() {
    if (TopMakesWay())
      AddRow(FPoints, FCount - 1, 0, FY + FForm.Sink);
    else
      AddRow(FPoints, FCount - 1, 0.5 + (FQuads == 0 ? 0 : FForm.Shift), FY + kHexStep);
  }

  const TPlaceInfo& FInfo;
  int FCount;
  double FRest;
  int FPairs;
  int FQuads;
  int FStaggers;
  TLooseForm FForm;
  double FY = 0;  // of the last row that closes a piece
  std::vector<TZone> FZones;
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

TLooseForm LooseForm(double Rest, double Quad) {
  TLooseForm form;
  form.Quad = Quad;
  form.Stagger = Leg(Rest);
  form.Sink = Quad / 2 - kHexStep;
  form.Shift = Leg(form.Sink);
  form.Lift = Leg(1 - form.Shift + Rest);
  form.Reach = Leg(0.5 + Rest);
  return form;
}

double LooseExcess(const TLooseForm& Form, bool TopRow) {
  const double column = std::max(3 + 2 * Form.Lift - Form.Quad, 0.0);
  return TopRow ? std::min(column, Form.Sink - kHexStep) : column;
}

bool TopRowMakesWay(const TLooseForm& Form) {
  return LooseExcess(Form, true) < LooseExcess(Form, false);
}

TVPoint2DList LooseStack(const TPlaceInfo& Info, const TRowWidth& Width) {
  return TLooseWriter(Info, Width).Run();
}

TVPoint2DList TightStack(const TPlaceInfo& Info, const TRowWidth& Width) {
  return TTightWriter(Info, Width).Run();
}

}  // namespace platenest::detail
