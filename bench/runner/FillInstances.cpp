#include "FillInstances.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <regex>
#include <stdexcept>

namespace platenest::bench {

namespace {

TFillRef RefOf(const nlohmann::json& Ref) {
  TFillRef made;
  made.Turned = Ref.at("rot") == 1;
  made.Limited = Ref.at("bounded") == 1;
  made.Cut = Ref.at("cut");
  made.Best = Ref.at("best");
  made.Proven = Ref.value("opt", 0) == 1;
  if (Ref.contains("bound")) made.Bound = Ref["bound"].get<double>();
  if (made.Proven) made.Bound = made.Best;
  return made;
}

TFillInstance InstanceOf(const nlohmann::json& Job, const std::string& Set) {
  TFillInstance made;
  made.Id = Job.at("id");
  made.Group = Job.value("set", Set);
  test::TFillCase& fill = made.Case;
  fill.Plate = TVRect2D::FromSize(Job.at("plates")[0][0], Job["plates"][0][1]);
  fill.Gap = Job.at("gap");
  fill.Weighted = Job.at("weighted") == 1;
  for (const auto& part : Job.at("parts")) {
    TNestRect rect(part[2], Size(fill.Parts), TVRect2D::FromSize(part[0], part[1]));
    rect.Area = part.size() > 3 ? part[3].get<double>() : rect.BoundBox.Area();
    fill.Parts.push_back(rect);
  }
  for (const auto& ref : Job.at("refs"))
    if (ref.contains("best")) made.Refs.push_back(RefOf(ref));
  return made;
}

}  // namespace

std::vector<TFillInstance> ReadFillInstances(const std::string& File, const std::string& Id) {
  std::ifstream stream(File);
  if (!stream) throw std::runtime_error("cannot read " + File);
  const nlohmann::json all = nlohmann::json::parse(stream);
  const std::regex wanted(Id.empty() ? ".*" : Id, std::regex::icase);
  std::vector<TFillInstance> instances;
  for (const auto& job : all.at("instances"))
    if (std::regex_match(job.at("id").get<std::string>(), wanted))
      instances.push_back(InstanceOf(job, all.value("set", "")));
  return instances;
}

test::TFillCase CaseOf(const TFillInstance& Instance, bool Turned, bool Limited) {
  test::TFillCase made = Instance.Case;
  made.CanTurn = Turned;
  made.Unlimited = !Limited;
  for (TNestRect& part : made.Parts)
    if (!Limited || part.Amount < 0)
      part.Amount = test::BeyondPlate(made.Plate, made.Gap, part.BoundBox.Width(), part.BoundBox.Height());
  return made;
}

}  // namespace platenest::bench
