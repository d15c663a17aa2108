#include "FaultList.h"

#include <algorithm>
#include <utility>

#include "Texts.h"

namespace platenest::detail {

void FaultList::Add(std::vector<Fault>& List, std::string_view Code, std::string Place, std::string Text,
                    std::string About) {
  if (List.size() >= JobError::kMaxFaults || Knows(About)) return;
  List.push_back({std::string(Code), std::move(Place), std::move(Text), ""});
  FKnown.push_back(std::move(About));
}

void FaultList::AddInput(std::string_view Code, std::string Place, std::string Text) {
  std::string about = Place;
  Add(FInput, Code, std::move(Place), std::move(Text), std::move(about));
}

void FaultList::AddLimit(std::string Place, std::string Text) {
  std::string about = Place;
  Add(FLimits, "limit", std::move(Place), std::move(Text), std::move(about));
}

void FaultList::AddMissing(const std::string& Place, std::string_view Member) {
  Add(FInput, "missing", Place, Joined("`", Member, "` is missing"), Joined(Place, "/", Member));
}

bool FaultList::Knows(std::string_view Place) const {
  return std::ranges::any_of(FKnown, [&](std::string_view known) {
    return Place.starts_with(known) && (Place.size() == known.size() || Place[known.size()] == '/');
  });
}

void FaultList::Rename(const std::function<std::string(const std::string&)>& NewPlace) {
  for (std::vector<Fault>* list : {&FInput, &FLimits}) {
    for (Fault& fault : *list) fault.Place = NewPlace(fault.Place);
  }
}

void FaultList::Raise() const {
  if (!FInput.empty()) {
    std::vector<Fault> all = FInput;
    all.insert(all.end(), FLimits.begin(), FLimits.end());
    throw InputError(std::move(all));
  }
  if (!FLimits.empty()) throw LimitError(FLimits);
}

}  // namespace platenest::detail
