#pragma once

#include "Slots.h"

// The usual members of forms: each of these makes the slot of one member of a record, for Field::At.
namespace platenest::detail {

template <class Member>
struct TMemberTraits;
template <class R, class V>
struct TMemberTraits<V R::*> {
  using Record = R;
  using Value = V;
};
template <auto Member>
using RecordOf = typename TMemberTraits<decltype(Member)>::Record;
template <auto Member>
using ValueOf = typename TMemberTraits<decltype(Member)>::Value;

template <auto Member>
Slot Number(RecordOf<Member>& Record) {
  return NumberAt{&(Record.*Member)};
}

template <auto Member>
Slot NotNegative(RecordOf<Member>& Record) {
  return NumberAt{&(Record.*Member), false, 0};
}

template <auto Member, const WholeRule& Rule>
Slot Whole(RecordOf<Member>& Record) {
  return WholeAt{&Rule, &(Record.*Member)};
}

template <auto Member>
Slot Flag(RecordOf<Member>& Record) {
  return FlagAt{&(Record.*Member)};
}

template <auto Member>
Slot Text(RecordOf<Member>& Record) {
  return TextAt{&(Record.*Member)};
}

template <auto Member>
Slot Id(RecordOf<Member>& Record) {
  return TextAt{&(Record.*Member), true};
}

template <auto Member, Int64 Most>
Slot Ids(RecordOf<Member>& Record) {
  return IdsAt{&(Record.*Member), Most};
}

template <auto Member, const auto& Names>
Slot Choice(RecordOf<Member>& Record) {
  return ChoiceAt{Names, &(Record.*Member)};
}

// Only required, not kept.
template <class Record, const auto& Names>
Slot Constant(Record&) {
  return ChoiceAt{Names, {}};
}

template <auto Member>
Slot Numbers(RecordOf<Member>& Record) {
  return NumbersAt{Record.*Member};
}

template <auto Member>
Slot Object(RecordOf<Member>& Record) {
  return ObjectAt<ValueOf<Member>>{&(Record.*Member)};
}

// An object that may be absent.
template <auto Member>
Slot Optional(RecordOf<Member>& Record) {
  return ObjectAt<typename ValueOf<Member>::value_type>{&(Record.*Member).emplace()};
}

template <auto Member, Int64 Most>
Slot List(RecordOf<Member>& Record) {
  return ListAt<typename ValueOf<Member>::value_type>{&(Record.*Member), Most};
}

}  // namespace platenest::detail
