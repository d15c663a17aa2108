#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "FaultText.h"

// Jobs of parts on plates, and their answers.
namespace platenest {

struct TRandom {
  explicit TRandom(unsigned Seed) : FEngine(Seed) {}
  int Pick(int Low, int High) { return std::uniform_int_distribution(Low, High)(FEngine); }
  double Uniform(double Low, double High) { return std::uniform_real_distribution(Low, High)(FEngine); }
  bool Chance(int Percent) { return Pick(1, 100) <= Percent; }
  std::mt19937 FEngine;
};

inline Plate Sheet(double Width, double Height, std::optional<int> Count = 1, std::optional<double> Cost = {},
                   bool Remnant = false) {
  return {.Id = "", .Width = Width, .Height = Height, .Count = Count, .Cost = Cost, .Remnant = Remnant};
}

inline Part Rect(double Width, double Height, std::optional<int> Amount = std::nullopt, Rotate Turn = Rotate::Any,
                 std::optional<double> Value = {}) {
  return {.Id = "", .Width = Width, .Height = Height, .Amount = Amount, .Turn = Turn, .Value = Value};
}

inline Job PlateJob(JobKind Kind, std::vector<Plate> Plates, std::vector<Part> Parts, double Gap = 0) {
  Job job;
  job.Kind = Kind;
  job.Gap = Gap;
  job.Plates = std::move(Plates);
  job.Parts = std::move(Parts);
  GiveIds(job);
  return job;
}

inline Job With(Job AJob, const std::string& Method) {
  AJob.Run.Method = Method;
  return AJob;
}

// A result that says what it is an answer to.
inline Result HeadOf(const Job& AJob) {
  Result result;
  std::tie(result.Kind, result.Units, result.Gap, result.Margin) =
      std::tie(AJob.Kind, AJob.Units, AJob.Gap, AJob.Margin);
  return result;
}

// The answer, which must pass the check.
inline Result Answer(const Job& AJob, const RunHooks& Hooks = {}) {
  Result result = run(AJob, Hooks);
  EXPECT_EQ(Verdict(AJob, result), "") << JobToJson(AJob);
  return result;
}

inline std::vector<int> Placed(const Result& AResult) {
  std::vector<int> counts;
  for (const PartUse& part : AResult.Parts) counts.push_back(part.Placed);
  return counts;
}

// Copies placed, status, reasons and warnings, as "8 0 partial too_large proved".
inline std::string Told(const Result& AResult) {
  std::string text;
  for (const PartUse& part : AResult.Parts) text += std::to_string(part.Placed) + " ";
  text += StatusName(AResult.Status);
  for (const PartUse& part : AResult.Parts) text += (part.Reason.empty() ? "" : " ") + part.Reason;
  text += AResult.Proved ? " proved" : "";
  for (const std::string& warning : AResult.Warnings) text += ", " + warning;
  return text;
}

// With whole values.
inline std::string BoundsText(const std::vector<Bound>& Bounds) {
  std::string text;
  for (const Bound& bound : Bounds)
    text += bound.What + " " + bound.Kind + " " + std::to_string(static_cast<Int64>(bound.Value)) + ", ";
  return text;
}

}  // namespace platenest
