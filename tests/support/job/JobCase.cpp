#include "JobCase.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "JobFrame.h"
#include "platenest/foundation/Rounding.h"

namespace platenest::test {

namespace {

struct TPiece {
  int W = 0, H = 0;
  std::optional<int> Amount;
};

// One job in whole numbers.
class TMaker : TJobFrame {
 public:
  explicit TMaker(const TPick& Pick) : TJobFrame(Pick) {}

  TJobCase Make() {
    PickFrame();
    const bool isCut = FPick(4) == 0;
    if (isCut) {
      CutPlatesUp();
    } else {
      PickParts();
      PickStock();
    }
    TJobCase made{JobOf(), {}};
    if (isCut && IsScaleExact()) made.Sample = SampleOf(made.AJob, FCut);
    return made;
  }

 private:
  const TSheet& AnySheet() { return FSheets[static_cast<std::size_t>(FPick(Size(FSheets)))]; }

  void PickFrame() {
    PickSpace();
    const int count = OneIn(3) ? 1 : Between(1, 4);
    for (int i = 0; i < count; ++i) {
      TSheet sheet{Between(100, 1600), 0, {}};
      sheet.H = Between(std::max(60, sheet.W / 4), sheet.W);
      if (OneIn(3)) std::swap(sheet.W, sheet.H);
      if (i > 0 && OneIn(4)) sheet = FSheets.back();
      if (i > 0 && OneIn(4)) std::swap(sheet.W, sheet.H);
      FSheets.push_back(sheet);
    }
  }

  int PickSide() {
    const TSheet& sheet = AnySheet();
    const bool across = OneIn(2);
    const int side = across ? sheet.H : sheet.W, room = across ? RoomH(sheet) : RoomW(sheet);
    const int shorter = std::min(RoomW(sheet), RoomH(sheet)), longer = std::max(RoomW(sheet), RoomH(sheet));
    const int choice = FPick(14), fits[] = {room, side, (room - FGap) / 2, (room - 2 * FGap) / 3};
    if (choice < 4) return fits[choice];
    if (choice == 4) return OneIn(6) ? longer + 1 + FPick(longer) : shorter;
    if (choice == 5) return std::max(2, shorter / 25 + FPick(shorter / 25 + 1));
    return std::max(2, shorter / 12) + FPick(longer / 2);
  }

  int PickAmount() {
    const int choice = FPick(10);
    if (choice == 4) return 200;
    return choice < 2 ? 1 : Between(1, choice < 4 ? 200 : 12);
  }

  double AreaOf(const TPiece& Piece) const { return (1.0 * Piece.W + FGap) * (Piece.H + FGap); }
  double Demanded() const {
    double area = 0;
    for (const TPiece& piece : FPieces) area += AreaOf(piece) * piece.Amount.value_or(0);
    return area;
  }
  double LargestRoom() const {
    double area = 0;
    for (const TSheet& sheet : FSheets) area = std::max(area, 1.0 * RoomW(sheet) * RoomH(sheet));
    return area;
  }

  void PickParts() {
    const int count = OneIn(8) ? Between(13, 30) : Between(1, 12);
    for (int i = 0; i < count; ++i) {
      TPiece piece{PickSide(), PickSide(), PickAmount()};
      if (i > 0 && OneIn(8)) {
        piece.W = FPieces.back().W;
        piece.H = FPieces.back().H;
      }
      if (i > 0 && OneIn(12)) std::swap(piece.W, piece.H);
      piece.W = std::max(1, piece.W);
      piece.H = std::max(1, piece.H);
      FPieces.push_back(piece);
    }
    const double most = LargestRoom() * (OneIn(12) ? 300 : 30);
    while (Demanded() > most) {
      TPiece& largest =
          *std::ranges::max_element(FPieces, {}, [this](const TPiece& p) { return AreaOf(p) * *p.Amount; });
      if (*largest.Amount == 1) break;
      largest.Amount = *largest.Amount / 2;
    }
  }

  void PickStock() {
    const TStock mode = PickCounts(Ceil(std::min(1e4, Demanded() / LargestRoom())) + 1);
    // A part without limit fills whatever there is.
    TPiece& endless = FPieces[static_cast<std::size_t>(FPick(Size(FPieces)))];
    if (mode != TStock::Scarce || OneIn(2) || AreaOf(endless) * 1000 < LargestRoom()) return;
    for (TSheet& sheet : FSheets) sheet.Count = std::min(*sheet.Count, 6);
    endless.Amount.reset();
  }

  // Straight cuts with the gap between what they part, so that a plate's pieces lie on it again.
  void Cut(int W, int H, int Depth, int Copies, std::map<std::pair<int, int>, int>& Pieces) {
    const bool across = OneIn(2);
    const int side = across ? H : W, first = side > FGap + 40 ? Between(side / 5, side - side / 5 - FGap) : 0;
    if (Depth == 0 || first < 8 || side - first - FGap < 8) {
      if (OneIn(2)) std::swap(W, H);
      Pieces[{W, H}] += Copies;
      return;
    }
    const int rest = side - first - FGap;
    Cut(across ? W : first, across ? first : H, Depth - 1, Copies, Pieces);
    Cut(across ? W : rest, across ? rest : H, Depth - 1, Copies, Pieces);
  }

  void CutPlatesUp() {
    std::map<std::pair<int, int>, int> pieces;
    for (const TSheet& sheet : FSheets) {
      const int layouts = Between(1, 3);
      int used = 0;
      for (int i = 0; i < layouts; ++i) {
        const int copies = OneIn(3) ? Between(1, 30) : 1;
        used += copies;
        Cut(RoomW(sheet), RoomH(sheet), Between(1, 4), copies, pieces);
      }
      FCut.push_back(used);
    }
    for (const auto& [size, amount] : pieces) FPieces.push_back({size.first, size.second, amount});
    PickTightness(FCut);
  }

  // A sample turns some of its pieces, and so must the answer be free to.
  void PickLocks(std::vector<Part>& Parts) {
    const int mode = FCut.empty() ? FPick(5) : 2;
    for (Part& part : Parts)
      if (mode == 0 || (mode == 1 && OneIn(2))) part.Turn = Rotate::None;
  }

  Job JobOf() {
    Job made = FrameOf(JobKind::Job, /*KnowsRates=*/true);
    for (const TPiece& piece : FPieces) {
      Part part{
          .Id = "part " + std::to_string(made.Parts.size()), .Width = LengthOf(piece.W), .Height = LengthOf(piece.H)};
      part.Amount = piece.Amount;
      if (OneIn(12)) part.Value = 1 + FPick(50);
      made.Parts.push_back(part);
    }
    PickLocks(made.Parts);
    if (OneIn(6)) made.Run.MemoryLimit = Int64{1} << (16 + FPick(12));
    return made;
  }

  std::vector<TPiece> FPieces;
  std::vector<int> FCut;  // plates of each kind that were cut up
};

}  // namespace

TJobCase MakeJobCase(const TJobFrame::TPick& Pick) {
  return TMaker(Pick).Make();
}

TJobCase MakeJobCase(unsigned Seed) {
  return MakeJobCase(PicksOf(Seed));
}

void AskFor(Job& AJob, const std::string& Method) {
  AJob.Run.Method = Method;
  if (Method != "svc" && Method != "cg") return;
  for (Part& part : AJob.Parts) part.Turn = Rotate::Any;
}

Job Shrunk(Job AJob, const std::function<bool(const Job&)>& Fails) {
  bool isLess = true;
  const auto attempt = [&](const auto& change) {
    Job less = AJob;
    change(less);
    if (less == AJob || !Fails(less)) return;
    AJob = std::move(less);
    isLess = true;
  };
  const auto dropEntries = [&](auto list) {
    for (int i = Size(AJob.*list) - 1; i >= 0 && Size(AJob.*list) > 1; --i)
      attempt([list, i](Job& less) { (less.*list).erase((less.*list).begin() + i); });
  };
  while (std::exchange(isLess, false)) {
    dropEntries(&Job::Parts);
    dropEntries(&Job::Plates);
    for (std::size_t i = 0; i < AJob.Parts.size(); ++i)
      for (const auto& next : {+[](int) { return 1; }, +[](int n) { return n / 2; }, +[](int n) { return n - 1; }})
        attempt([i, next](Job& less) {
          std::optional<int>& amount = less.Parts[i].Amount;
          if (amount && *amount > 1) amount = next(*amount);
        });
    attempt([](Job& less) { less.Margin = {}; });
    attempt([](Job& less) { less.Gap = 0; });
  }
  return AJob;
}

}  // namespace platenest::test
