#include "LabelSuite.h"

#include <algorithm>
#include <cstdio>
#include <exception>

#include "InnerFit.h"
#include "InscribedLabel.h"
#include "LatticeDepth.h"
#include "NfpPairs.h"
#include "platenest/services/arrayInfo.h"

namespace platenest::bench {

namespace {

constexpr double kLabelShare = 0.125;   // of the part's box
constexpr double kLeastShare = 0.001;   // least margin asked for, of the box
constexpr double kPitchShare = 0.0005;  // of the grid that tells the best margin, of the box
constexpr double kLineHalfWidth = 0.01;

struct TTask {
  std::string Name;
  TLabelRoom Room;  // for the label upright; its obstacles are the bands of the lines
  TVPolyline2DList Layer;
  TVPolyline2DList Lines;
  TVRect2D Label;
  double Offset = 0;
  double Pitch = 0;
};

TTask TaskOf(const TNfpShape& Part, bool HasLine) {
  TTask task;
  task.Name = Part.Name;
  for (TVPolyline2D contour : Part.Shape) {
    contour.push_back(TPoint2D(contour.front()));
    task.Layer.push_back(contour);
  }
  const TVRect2D box = Part.Shape.front().BoundBox();
  const double extent = std::min(box.Width(), box.Height());
  task.Label = TVRect2D::FromSize(box.Width() * kLabelShare, box.Height() * kLabelShare);
  task.Offset = extent * kLeastShare;
  task.Pitch = extent * kPitchShare;
  if (HasLine) task.Lines.push_back(TVPolyline2D{box.GetBottomLeft(), box.Center()});
  task.Room = {Part.Shape, {}, task.Label.Width(), task.Label.Height()};
  for (const TVPolyline2D& line : task.Lines)
    for (const TVPolyline2D& contour : TLabelInPartAlgo::ExpandLine(line, kLineHalfWidth))
      task.Room.Obstacles.push_back(contour);
  return task;
}

struct TAnswer {
  bool IsFound = false;
  bool IsTurned = false;
  TPoint2D TransVec;
  double Margin = -1;
  TTimes Times;
};

TVRect2D Turned(const TVRect2D& Label) {
  const TPoint2D c = Label.Center();
  return TVRect2D::FromBounds(c.Y + Label.Width() / 2, c.X - Label.Height() / 2, c.Y - Label.Width() / 2,
                              c.X + Label.Height() / 2);
}

TAnswer Ask(const TTask& Task, int Repeat) {
  TAnswer answer;
  answer.Times = MedianTimes(Repeat, [&] {
    answer.IsFound = TLabelInPartAlgo::CalcLabelPosInPart(Task.Layer, Task.Lines, Task.Label, Task.Offset,
                                                          answer.IsTurned, answer.TransVec);
  });
  if (!answer.IsFound) return answer;
  const TVRect2D label = answer.IsTurned ? Turned(Task.Label) : Task.Label;
  TPoint2D place;
  answer.Margin = TLabelInPartAlgo::DoCalcLabelPosInPart(Task.Layer, Task.Lines, label, Task.Offset, place);
  return answer;
}

// How deep the label, grown by its margin, lies out of the part or in a line.
double DepthOf(const TTask& Task, const TAnswer& Answer) {
  const TVRect2D label = Answer.IsTurned ? Turned(Task.Label) : Task.Label;
  const TVRect2D grown = label.Translate(Answer.TransVec).Inflate(Answer.Margin);
  const TPaths placed = PolygonOf(TVHPolygon{TVPolyline2D(grown)});
  double depth = DepthOutside(PolygonOf(Task.Room.Part), placed);
  for (const TVPolyline2D& line : Task.Lines)
    depth = std::max(depth, OverlapDepth(PolygonOf(TLabelInPartAlgo::ExpandLine(line, kLineHalfWidth)), placed));
  return depth;
}

struct TTally {
  std::string Id;
  std::vector<double> Ms;
  std::vector<double> CpuMs;
  std::vector<double> Shares;   // of the best margin, where the label was placed
  std::vector<double> Missing;  // of the margin that was to be had, of half the extent
  int Placed = 0;
  int Turned = 0;
  int Missed = 0;  // not placed although there is room for the margin asked for
  double Deepest = 0;
  int Faults = 0;
  std::string FirstFault;
};

void AddFault(TTally& Tally, const TTask& Task, const std::string& Text) {
  ++Tally.Faults;
  const std::string fault = "part " + Task.Name + ": " + Text;
  if (Tally.FirstFault.empty()) Tally.FirstFault = fault;
  std::printf("  %s %s\n", Tally.Id.c_str(), fault.c_str());
}

void JudgePlace(TTally& Tally, const TTask& Task, const TAnswer& Answer) {
  ++Tally.Placed;
  Tally.Turned += Answer.IsTurned;
  const double depth = DepthOf(Task, Answer);
  Tally.Deepest = std::max(Tally.Deepest, depth);
  char text[120];
  std::snprintf(text, sizeof text, "margin %.6g cut by %.3g", Answer.Margin, depth);
  if (depth > test::kAllowedDepth) AddFault(Tally, Task, text);
  TLabelRoom room = Task.Room;
  if (Answer.IsTurned) std::swap(room.Width, room.Height);
  const double best = room.BestMargin(Task.Pitch);
  std::snprintf(text, sizeof text, "margin %.6g above the best one %.6g", Answer.Margin, best);
  if (Answer.Margin > best + Task.Pitch + test::kAllowedDepth) AddFault(Tally, Task, text);
  Tally.Shares.push_back(std::min(1.0, Answer.Margin / best));
  const TVRect2D box = Task.Room.Part.front().BoundBox();
  Tally.Missing.push_back((best - Answer.Margin) / (std::min(box.Width(), box.Height()) / 2));
}

// A label that found no place must have room for the margin asked for in neither orientation.
void JudgeRefusal(TTally& Tally, const TTask& Task) {
  for (const bool isTurned : {false, true}) {
    TLabelRoom room = Task.Room;
    if (isTurned) std::swap(room.Width, room.Height);
    const double best = room.BestMargin(Task.Pitch);
    if (best <= Task.Offset + test::kAllowedDepth) continue;
    ++Tally.Missed;
    char text[120];
    std::snprintf(text, sizeof text, "no place though a margin of %.6g is free", best);
    return AddFault(Tally, Task, text);
  }
}

void Add(TTally& Tally, const TTask& Task, int Repeat) {
  try {
    const TAnswer answer = Ask(Task, Repeat);
    Tally.Ms.push_back(answer.Times.Ms);
    Tally.CpuMs.push_back(answer.Times.CpuMs);
    if (answer.IsFound)
      JudgePlace(Tally, Task, answer);
    else
      JudgeRefusal(Tally, Task);
  } catch (const std::exception& error) {
    AddFault(Tally, Task, std::string("raised ") + error.what());
  }
}

double Mean(const std::vector<double>& Values) {
  double sum = 0;
  for (const double value : Values) sum += value;
  return Values.empty() ? 0 : sum / static_cast<double>(Values.size());
}

TRow RowOf(const TTally& Tally) {
  TRow row;
  row.Id = Tally.Id;
  row.Size = std::to_string(Tally.CpuMs.size());
  row.Result = Mean(Tally.Shares);
  row.Best = row.Bound = 1;
  row.Ms = Quantile(Tally.CpuMs, 0.5);
  row.Fault = Tally.FirstFault;
  row.Figures = {{"cpu_ms_p99", Quantile(Tally.CpuMs, 0.99)},
                 {"wall_ms", Quantile(Tally.Ms, 0.5)},
                 {"wall_ms_p99", Quantile(Tally.Ms, 0.99)},
                 {"placed", Tally.Placed},
                 {"turned", Tally.Turned},
                 {"share_least", Quantile(Tally.Shares, 0)},
                 {"missing_most", Quantile(Tally.Missing, 1)},
                 {"deepest", Tally.Deepest},
                 {"missed", Tally.Missed},
                 {"faults", Tally.Faults}};
  return row;
}

void PrintHead() {
  std::printf("%-16s %5s %6s %6s %7s %7s %8s %9s %9s %9s %9s %9s %6s %6s\n", "instance", "parts", "placed", "turned",
              "share", "least", "missing", "cpu ms", "p99", "wall ms", "p99", "deepest", "missed", "faults");
}

void Print(const TTally& Tally) {
  std::printf("%-16s %5zu %6d %6d %7.4f %7.4f %8.4f %9.4f %9.4f %9.4f %9.4f %9.2g %6d %6d\n", Tally.Id.c_str(),
              Tally.CpuMs.size(), Tally.Placed, Tally.Turned, Mean(Tally.Shares), Quantile(Tally.Shares, 0),
              Quantile(Tally.Missing, 1), Quantile(Tally.CpuMs, 0.5), Quantile(Tally.CpuMs, 0.99),
              Quantile(Tally.Ms, 0.5), Quantile(Tally.Ms, 0.99), Tally.Deepest, Tally.Missed, Tally.Faults);
  std::fflush(stdout);
}

}  // namespace

std::vector<TRow> RunLabelSuite(const TArguments& Arguments) {
  std::vector<TRow> rows;
  std::vector<double> all;
  PrintHead();
  for (const std::string& file : Arguments.Files) {
    const TNfpInstance instance = ReadNfpInstance(file);
    std::vector<TNfpShape> shapes = ShapesOf(instance, Arguments.Turned);
    if (Size(shapes) > Arguments.Most) shapes.resize(static_cast<std::size_t>(Arguments.Most));
    for (const bool hasLine : {false, true}) {
      TTally tally;
      tally.Id = instance.Name + (hasLine ? "/line" : "/plain");
      for (const TNfpShape& shape : shapes) Add(tally, TaskOf(shape, hasLine), Arguments.Repeat);
      Print(tally);
      rows.push_back(RowOf(tally));
      all.insert(all.end(), tally.CpuMs.begin(), tally.CpuMs.end());
    }
  }
  std::printf("all %zu labels: median %.4f ms, p99 %.4f ms of CPU time\n", all.size(), Quantile(all, 0.5),
              Quantile(all, 0.99));
  return rows;
}

}  // namespace platenest::bench
