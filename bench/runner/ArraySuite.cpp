#include "ArraySuite.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <numbers>

#include "LatticeCheck.h"
#include "LatticeSearch.h"
#include "NfpCase.h"
#include "NfpPairs.h"
#include "platenest/services/arrayInfo.h"

namespace platenest::bench {

namespace {

constexpr double kTol = 1e-3;
constexpr std::array kDirections = {0.3, 1.0, std::numbers::pi / 2, 3.6};  // radians, of the second vector
constexpr Int64 kFewPoints = 40;

using TLattice = TPair<TPoint2D, TPoint2D>;

struct TForm {
  const char* Name;
  bool X;
  bool Y;
};
constexpr std::array kForms = {TForm{"free", false, false}, TForm{"x", true, false}, TForm{"y", false, true},
                               TForm{"xy", true, true}};
constexpr std::size_t kFree = 0;

struct TFormTally {
  std::vector<double> Densities;
  std::vector<double> CpuMs;
  std::vector<double> Ms;
};

struct TTally {
  std::string Id;
  std::array<TFormTally, kForms.size()> Forms;
  std::vector<double> Searched;
  std::vector<double> Shares;  // of the free lattice's density in the searched one
  std::vector<double> NfpMs;
  double WorstOfFewPoints = 0;  // CPU ms of any form
  double Deepest = 0;
  int Faults = 0;
  std::string FirstFault;
};

double Mean(const std::vector<double>& Values) {
  double sum = 0;
  for (const double value : Values) sum += value;
  return Values.empty() ? 0 : sum / static_cast<double>(Values.size());
}

double DensityOf(double Area, const TLattice& Lattice) {
  const double cell = test::CellArea(Lattice);
  return cell > 0 ? Area / cell : 0;
}

void AddFault(TTally& Tally, const std::string& Part, const std::string& Text) {
  ++Tally.Faults;
  const std::string fault = "part " + Part + ": " + Text;
  if (Tally.FirstFault.empty()) Tally.FirstFault = fault;
  std::printf("  %s %s\n", Tally.Id.c_str(), fault.c_str());
}

// The lattice, or zero vectors after an error, which is a fault.
TLattice Measure(TTally& Tally, const TNfpShape& Part, const TPaths& NFP, std::size_t Form, int Repeat) {
  TLattice lattice;
  try {
    const TTimes times = MedianTimes(Repeat, [&] {
      TPaths nfp = NFP;
      lattice = TArrayInfoAlgo::CalcArrayInfo(nfp, kForms[Form].X, kForms[Form].Y, false, kTol);
    });
    Tally.Forms[Form].CpuMs.push_back(times.CpuMs);
    Tally.Forms[Form].Ms.push_back(times.Ms);
    if (EdgesOf(Part.Shape) <= kFewPoints) Tally.WorstOfFewPoints = std::max(Tally.WorstOfFewPoints, times.CpuMs);
  } catch (const std::exception& error) {
    AddFault(Tally, Part.Name, std::string(kForms[Form].Name) + " raised " + error.what());
    return {};
  }
  return lattice;
}

void Judge(TTally& Tally, const TNfpShape& Part, const char* Form, const TLattice& Lattice, double Area) {
  const double depth = test::LatticeDepth(PolygonOf(Part.Shape), Lattice);
  Tally.Deepest = std::max(Tally.Deepest, depth);
  const double density = DensityOf(Area, Lattice);
  char text[120];
  std::snprintf(text, sizeof text, "%s overlaps by %.3g, density %.4f", Form, depth, density);
  if (depth > test::kAllowedDepth || density > 1.0001) AddFault(Tally, Part.Name, text);
}

// The forms along the axes with turned and mirrored copies, and the second vector in prescribed directions.
void JudgeOthers(TTally& Tally, const TNfpShape& Part, const TPaths& NFP, const TLattice& Free) try {
  const TVHPolygonList shape{Part.Shape};
  const auto judge = [&](const std::string& name, double depth) {
    Tally.Deepest = std::max(Tally.Deepest, depth);
    if (depth > test::kAllowedDepth) AddFault(Tally, Part.Name, name + " overlaps by " + std::to_string(depth));
  };
  for (const test::TAxisForm& form : test::kAxisForms)
    for (const bool separate : {false, true})
      judge(form.Name + std::string(separate ? ", separate" : ", nearest"), test::AxisFormDepth(form, shape, separate));
  for (const double angle : kDirections) {
    const TPoint2D second = TArrayInfoAlgo::Calc2ndArrayTrans(NFP, Free.first, Free.first.RotateBy(angle));
    judge("directed by " + std::to_string(angle), test::LatticeDepth(PolygonOf(Part.Shape), {Free.first, second}));
  }
} catch (const std::exception& error) {
  AddFault(Tally, Part.Name, std::string("raised ") + error.what());
}

void Add(TTally& Tally, const TNfpShape& Part, int Repeat) {
  const TVHPolygonList shape{Part.Shape};
  const double area = RegionArea(PolygonOf(Part.Shape));
  TPaths nfp;
  Tally.NfpMs.push_back(MedianTimes(Repeat, [&] {
                          nfp.clear();
                          TArrayInfoAlgo::CalcNFP(shape, 0, nfp);
                        }).CpuMs);
  for (std::size_t form = 0; form < kForms.size(); ++form) {
    const TLattice lattice = Measure(Tally, Part, nfp, form, Repeat);
    if (test::CellArea(lattice) == 0) continue;
    Judge(Tally, Part, kForms[form].Name, lattice, area);
    Tally.Forms[form].Densities.push_back(DensityOf(area, lattice));
    if (form != kFree) continue;
    const TLattice searched = SearchLattice(nfp, area);
    Judge(Tally, Part, "search", searched, area);
    Tally.Searched.push_back(DensityOf(area, searched));
    if (Tally.Searched.back() > 0) Tally.Shares.push_back(DensityOf(area, lattice) / Tally.Searched.back());
    JudgeOthers(Tally, Part, nfp, lattice);
  }
}

TRow RowOf(const TTally& Tally) {
  TRow row;
  const TFormTally& free = Tally.Forms[kFree];
  row.Id = Tally.Id;
  row.Size = std::to_string(Tally.NfpMs.size());
  row.Result = Mean(free.Densities);
  row.Best = Mean(Tally.Searched);
  row.Bound = 1;
  row.Ms = Quantile(free.CpuMs, 0.5);
  row.Fault = Tally.FirstFault;
  for (std::size_t i = 0; i < kForms.size(); ++i) {
    const std::string name = kForms[i].Name;
    const TFormTally& form = Tally.Forms[i];
    row.Figures.push_back({"density_" + name, Mean(form.Densities)});
    row.Figures.push_back({"cpu_ms_" + name, Quantile(form.CpuMs, 0.5)});
    row.Figures.push_back({"cpu_ms_p99_" + name, Quantile(form.CpuMs, 0.99)});
    row.Figures.push_back({"wall_ms_" + name, Quantile(form.Ms, 0.5)});
    row.Figures.push_back({"wall_ms_p99_" + name, Quantile(form.Ms, 0.99)});
  }
  row.Figures.insert(row.Figures.end(), {{"share_mean", Mean(Tally.Shares)},
                                         {"share_least", Quantile(Tally.Shares, 0)},
                                         {"cpu_ms_worst_40_points", Tally.WorstOfFewPoints},
                                         {"nfp_cpu_ms", Quantile(Tally.NfpMs, 0.5)},
                                         {"deepest", Tally.Deepest},
                                         {"faults", Tally.Faults}});
  return row;
}

void PrintHead() {
  std::printf("%-10s %5s %7s %7s %7s %7s %7s %6s %6s %9s %9s %9s %9s %9s %9s %6s\n", "instance", "parts", "free", "x",
              "y", "xy", "search", "share", "least", "free ms", "p99", "xy ms", "p99", "few worst", "deepest",
              "faults");
}

void Print(const TTally& Tally) {
  const TFormTally& free = Tally.Forms[kFree];
  const TFormTally& both = Tally.Forms.back();
  std::printf("%-10s %5zu %7.4f %7.4f %7.4f %7.4f %7.4f %6.3f %6.3f %9.4f %9.4f %9.4f %9.4f %9.4f %9.2g %6d\n",
              Tally.Id.c_str(), Tally.NfpMs.size(), Mean(free.Densities), Mean(Tally.Forms[1].Densities),
              Mean(Tally.Forms[2].Densities), Mean(both.Densities), Mean(Tally.Searched), Mean(Tally.Shares),
              Quantile(Tally.Shares, 0), Quantile(free.CpuMs, 0.5), Quantile(free.CpuMs, 0.99),
              Quantile(both.CpuMs, 0.5), Quantile(both.CpuMs, 0.99), Tally.WorstOfFewPoints, Tally.Deepest,
              Tally.Faults);
  std::fflush(stdout);
}

}  // namespace

std::vector<TRow> RunArraySuite(const TArguments& Arguments) {
  std::vector<TRow> rows;
  PrintHead();
  for (const std::string& file : Arguments.Files) {
    const TNfpInstance instance = ReadNfpInstance(file);
    std::vector<TNfpShape> shapes = ShapesOf(instance, Arguments.Turned);
    if (Size(shapes) > Arguments.Most) shapes.resize(static_cast<std::size_t>(Arguments.Most));
    TTally tally;
    tally.Id = instance.Name;
    for (const TNfpShape& shape : shapes) Add(tally, shape, Arguments.Repeat);
    Print(tally);
    rows.push_back(RowOf(tally));
  }
  return rows;
}

}  // namespace platenest::bench
