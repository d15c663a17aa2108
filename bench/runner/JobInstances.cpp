#include "JobInstances.h"

#include <fnmatch.h>

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <regex>
#include <stdexcept>

namespace platenest::bench {

namespace {

TJobRef RefOf(const nlohmann::json& Ref) {
  TJobRef made;
  made.Turned = Ref.at("rot") == 1;
  made.Cut = Ref.at("cut");
  if (Ref.contains("best")) made.Best = Ref["best"].get<double>();
  if (Ref.contains("bound")) made.Bound = Ref["bound"].get<double>();
  made.Source = Ref.value("src", "");
  return made;
}

// class03 of class03-040-07, gcut of gcut12d, CZ of CZ5-stock.
std::string GroupOf(const std::string& Id) {
  static const std::regex families("(class[0-9]+|gcut|ATP|CZ).*"), imahori("[A-D][LSV][XYZ]-stock");
  std::smatch match;
  if (std::regex_match(Id, match, families)) return match[1];
  return std::regex_match(Id, imahori) ? "Imahori" : "older";
}

TJobInstance InstanceOf(const nlohmann::json& Record) {
  TJobInstance made;
  made.Id = Record.at("id");
  made.Group = GroupOf(made.Id);
  Job& job = made.AJob;
  job.Kind = JobKind::Job;
  job.Name = made.Id;
  job.Gap = Record.at("gap");
  for (const auto& plate : Record.at("plates")) {
    Plate sheet{.Id = {}, .Width = plate[0], .Height = plate[1], .Count = plate[2].get<int>()};
    if (*sheet.Count < 0) sheet.Count.reset();
    job.Plates.push_back(sheet);
  }
  for (const auto& part : Record.at("parts"))
    job.Parts.push_back({.Id = {}, .Width = part[0], .Height = part[1], .Amount = part[2]});
  GiveIds(job);
  for (const auto& ref : Record.at("refs")) made.Refs.push_back(RefOf(ref));
  return made;
}

}  // namespace

int TJobInstance::Copies() const {
  int copies = 0;
  for (const Part& part : AJob.Parts) copies += part.Amount.value_or(0);
  return copies;
}

const TJobRef* TJobInstance::Best(bool Turned) const {
  const TJobRef* best = nullptr;
  for (const TJobRef& ref : Refs)
    if (ref.Best && (Turned || !ref.Turned) && (best == nullptr || *ref.Best < *best->Best)) best = &ref;
  return best;
}

double TJobInstance::Bound(bool Turned, bool Guillotine) const {
  double bound = 0;
  for (const TJobRef& ref : Refs) {
    if (!ref.Bound || (Turned && !ref.Turned)) continue;
    if (ref.Cut == "any" || (Guillotine && ref.Cut == "guillotine")) bound = std::max(bound, *ref.Bound);
  }
  return bound;
}

std::vector<TJobInstance> ReadJobInstances(const std::string& File, const std::string& Only, bool All) {
  std::ifstream stream(File);
  if (!stream) throw std::runtime_error("cannot read " + File);
  const nlohmann::json all = nlohmann::json::parse(stream);
  const auto isCore = [](const nlohmann::json& record) { return record.value("core", 0) == 1; };
  const bool coreOnly = Only.empty() && !All && std::ranges::any_of(all.at("instances"), isCore);
  std::vector<TJobInstance> instances;
  for (const auto& record : all.at("instances")) {
    if (record.at("job") != "plates" || (coreOnly && !isCore(record))) continue;
    const std::string id = record.at("id");
    if (Only.empty() || fnmatch(Only.c_str(), id.c_str(), 0) == 0) instances.push_back(InstanceOf(record));
  }
  return instances;
}

}  // namespace platenest::bench
