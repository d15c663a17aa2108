#include "OneSuite.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "platenest/URectNest/URectNest.h"
#include "platenest/layoutcheck/LayoutCheck.h"

namespace platenest::bench {

namespace {

struct TPalletJob {
  double L = 0;
  double W = 0;
  double PartL = 0;
  double PartW = 0;
  double Best = 0;
  double Bound = 0;
  double Five = 0;
};

std::vector<TPalletJob> ReadPalletFile(const std::string& File) {
  std::ifstream stream(File);
  if (!stream) throw std::runtime_error("cannot read " + File);
  const nlohmann::json all = nlohmann::json::parse(stream);
  const auto column = [&all, &File](const char* name) {
    const auto& names = all.at("columns");
    for (std::size_t i = 0; i < names.size(); ++i)
      if (names[i] == name) return i;
    throw std::runtime_error(File + ": no column " + name);
  };
  const std::size_t l = column("L"), w = column("W"), a = column("l"), b = column("w");
  const std::size_t best = column("best"), bound = column("bound"), five = column("five");
  std::vector<TPalletJob> jobs;
  for (const auto& row : all.at("rows"))
    jobs.push_back({row[l], row[w], row[a], row[b], row[best], row[bound], row[five]});
  return jobs;
}

std::string Text(double V) {
  return std::to_string(static_cast<long long>(V));
}

void Nest(const std::string& Method, const TVRect2D& Plate, const TNestRect& Part, TNestedRects& Layout) {
  if (Method == "fiveblock") {
    TRecursiveFiveblockNest(Plate, Part, 0, 0).SingleNest(Layout, 0, 0);
    return;
  }
  bool isFull = false;
  TRectangleNest(Plate, Part, 0).SingleNest(Layout, isFull);
}

TRow Solve(const TPalletJob& Job, const TArguments& Arguments) {
  const TVRect2D plate = TVRect2D::FromSize(Job.L, Job.W);
  const TNestRect part(static_cast<int>(Job.Bound) + 1, 0, TVRect2D::FromSize(Job.PartL, Job.PartW));
  TNestedRects layout;
  TRow row;
  row.Ms = MedianMs(Arguments.Repeat, [&] {
    layout.clear();
    Nest(Arguments.Method, plate, part, layout);
  });
  row.Size = Text(Job.L) + "x" + Text(Job.W);
  row.Id = row.Size + "/" + Text(Job.PartL) + "x" + Text(Job.PartW);
  row.Result = layout.Count();
  row.Best = Job.Best;
  row.Bound = static_cast<double>(BarnesBound(static_cast<Int64>(Job.L), static_cast<Int64>(Job.W),
                                              static_cast<Int64>(Job.PartL), static_cast<Int64>(Job.PartW)));
  row.Figures = {{"five", Job.Five}};
  row.Fault = CheckRectLayout(layout, plate, 0, {part});
  return row;
}

}  // namespace

std::vector<TRow> RunOneSuite(const TArguments& Arguments) {
  std::vector<TRow> rows;
  for (const TPalletJob& job : ReadPalletFile(Arguments.Files.front())) {
    if (Arguments.Rows > 0 && Size(rows) == Arguments.Rows) break;
    rows.push_back(Solve(job, Arguments));
  }
  return rows;
}

}  // namespace platenest::bench
