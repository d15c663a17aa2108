#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "platenest/job/JobErrors.h"
#include "platenest/job/Run.h"

namespace platenest {

// What Read raises, as "InputError: range /gap, limit /parts"; "none" if nothing.
template <class Function>
std::string FaultsOf(Function Read) {
  try {
    Read();
    return "none";
  } catch (const JobError& error) {
    std::string out = std::string(error.ClassName()) + ":";
    for (const Fault& fault : error.Faults()) {
      if (out.back() != ':') out += ",";
      out += " " + fault.Code + " " + fault.Place;
    }
    return out;
  }
}

// The text of the first fault.
template <class Function>
std::string FirstText(Function Read) {
  try {
    Read();
    return "none";
  } catch (const JobError& error) {
    return error.Faults().front().Text;
  }
}

inline std::string CheckFaults(const Job& AJob) {
  return FaultsOf([&] { CheckJob(AJob); });
}

// The first fault that the checker finds, with its place; empty if there is none.
inline std::string Verdict(const Job& AJob, const Result& AResult) {
  const std::vector<Fault> faults = CheckResult(AJob, AResult);
  return faults.empty() ? "" : faults[0].Place + ": " + faults[0].Text;
}

inline std::string FileText(const std::filesystem::path& Path) {
  std::ifstream file(Path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

inline std::vector<std::filesystem::path> DataFiles(const std::string& Folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(PLATENEST_TEST_DATA) / Folder)) {
    files.push_back(entry.path());
  }
  return files;
}

// A small valid job of kind Job, to be spoiled.
inline Job SmallJob() {
  Job job;
  job.Kind = JobKind::Job;
  job.Plates = {{.Id = "p", .Width = 1000, .Height = 500}, {.Id = "q", .Width = 600, .Height = 400}};
  job.Parts = {{.Id = "a", .Width = 300, .Height = 200, .Amount = 3},
               {.Id = "b", .Width = 20, .Height = 10, .Amount = 5}};
  return job;
}

}  // namespace platenest
