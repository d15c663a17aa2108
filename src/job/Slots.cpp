#include "Slots.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

#include "Texts.h"
#include "platenest/foundation/Rounding.h"

namespace platenest::detail {

namespace {

constexpr double kPastWhole = 18446744073709551616.0;  // 2^64

// As a message shows it.
std::string Shown(const Scalar& Value) {
  switch (Value.Kind) {
    case Scalar::Type::Null:
      return "null";
    case Scalar::Type::Flag:
      return Value.Flag ? "true" : "false";
    case Scalar::Type::Text:
      return Quoted(Value.Written);
    case Scalar::Type::Number:
      break;
  }
  if (Value.Whole) return Joined(Value.Number < 0 ? "-" : "", *Value.Whole);
  return Value.Written.size() <= 40 ? std::string(Value.Written) : NumberText(Value.Number);
}

std::string WholeWanted(const WholeRule& Rule) {
  return Joined("must be a whole number of at least ", Rule.Least);
}

std::string ChoiceWanted(std::span<const std::string_view> Names) {
  return Names.size() == 1 ? Joined("must be \"", Names.front(), "\"") : Joined("must be one of ", Listed(Names));
}

// Says what a slot wants.
struct Wanted {
  std::string operator()(const Skip&) const { return ""; }
  std::string operator()(const NumberAt& Slot) const {
    return Slot.MayBeNull ? "must be a number or null" : "must be a number";
  }
  std::string operator()(const WholeAt& Slot) const { return WholeWanted(*Slot.Rule); }
  std::string operator()(const FlagAt&) const { return "must be true or false"; }
  std::string operator()(const TextAt&) const { return "must be a text"; }
  std::string operator()(const ChoiceAt& Slot) const { return ChoiceWanted(Slot.Names); }
  std::string operator()(const NumbersAt& Slot) const {
    const std::string list = Joined("a list of ", Slot.Target.size(), " numbers");
    return Slot.OneForAll ? Joined("must be a number or ", list) : Joined("must be ", list);
  }
  std::string operator()(const IdsAt&) const { return "must be a text or a list of texts"; }
  template <class T>
  std::string operator()(const ObjectAt<T>&) const {
    return "must be an object";
  }
  template <class T>
  std::string operator()(const ListAt<T>&) const {
    return "must be a list";
  }
};

// Takes a value into a slot; false if it is of the wrong type.
class Taker {
 public:
  Taker(const Scalar& Value, const PlaceOf& Place, FaultList& Faults) : FValue(Value), FPlace(Place), FFaults(Faults) {}

  bool operator()(const Skip&) const { return true; }

  bool operator()(const NumberAt& Slot) const {
    if (Slot.MayBeNull && FValue.Kind == Scalar::Type::Null) return true;
    if (FValue.Kind != Scalar::Type::Number) return false;
    if (FValue.Number < Slot.Least) {
      FFaults.AddInput("range", FPlace(), Joined("must be at least ", Slot.Least, ", found ", Shown(FValue)));
      return true;
    }
    std::visit([&](auto* target) { *target = FValue.Number; }, Slot.Target);
    return true;
  }

  bool operator()(const WholeAt& Slot) const {
    const auto* nullable = std::get_if<std::optional<int>*>(&Slot.Target);
    if (nullable != nullptr && FValue.Kind == Scalar::Type::Null) {
      (*nullable)->reset();
      return true;
    }
    if (!CheckWhole(FValue, *Slot.Rule, FPlace, FFaults)) return true;
    std::visit(
        [&]<class T>(T* target) {
          if constexpr (std::is_same_v<T, std::optional<int>>) {
            *target = static_cast<int>(*FValue.Whole);
          } else {
            *target = static_cast<T>(*FValue.Whole);
          }
        },
        Slot.Target);
    return true;
  }

  bool operator()(const FlagAt& Slot) const {
    if (FValue.Kind != Scalar::Type::Flag) return false;
    *Slot.Target = FValue.Flag;
    return true;
  }

  bool operator()(const TextAt& Slot) const {
    if (FValue.Kind != Scalar::Type::Text) return false;
    if (!Slot.IsId || CheckId(FValue.Written, FPlace, FFaults)) *Slot.Target = FValue.Written;
    return true;
  }

  bool operator()(const ChoiceAt& Slot) const {
    if (FValue.Kind != Scalar::Type::Text) return false;
    const auto found = std::ranges::find(Slot.Names, FValue.Written);
    if (found == Slot.Names.end()) {
      FFaults.AddInput(
          "choice", FPlace(),
          Joined(ChoiceWanted(Slot.Names), ", found ", Shown(FValue), NearMiss(FValue.Written, Slot.Names)));
      return true;
    }
    const auto position = static_cast<std::uint8_t>(found - Slot.Names.begin());
    std::visit(
        [&]<class T>(T target) {
          if constexpr (std::is_same_v<T, std::string*>) {
            *target = *found;
          } else if constexpr (std::is_pointer_v<T>) {
            *target = static_cast<std::remove_pointer_t<T>>(position);
          }
        },
        Slot.Target);
    return true;
  }

  bool operator()(const NumbersAt& Slot) const {
    if (!Slot.OneForAll || FValue.Kind != Scalar::Type::Number) return false;
    std::ranges::fill(Slot.Target, FValue.Number);
    return true;
  }

  bool operator()(const IdsAt& Slot) const {
    if (FValue.Kind != Scalar::Type::Text) return false;
    if (CheckId(FValue.Written, FPlace, FFaults)) Slot.Target->assign(1, std::string(FValue.Written));
    return true;
  }

  template <class T>
  bool operator()(const ObjectAt<T>&) const {
    return false;
  }
  template <class T>
  bool operator()(const ListAt<T>&) const {
    return false;
  }

 private:
  const Scalar& FValue;
  const PlaceOf& FPlace;
  FaultList& FFaults;
};

}  // namespace

Scalar Scalar::FromFlag(bool V) {
  return {.Kind = Type::Flag, .Flag = V, .Number = 0, .Whole = {}, .Written = {}};
}

Scalar Scalar::FromNumber(double V, std::string_view Written) {
  Scalar scalar{.Kind = Type::Number, .Flag = false, .Number = V == 0 ? 0 : V, .Whole = {}, .Written = Written};
  if (std::trunc(V) == V && std::fabs(V) < kPastWhole) scalar.Whole = Trunc<std::uint64_t>(std::fabs(V));
  return scalar;
}

Scalar Scalar::FromWhole(std::uint64_t Size, bool IsNegative) {
  const auto size = static_cast<double>(Size);
  return {.Kind = Type::Number,
          .Flag = false,
          .Number = IsNegative && Size > 0 ? -size : size,
          .Whole = Size,
          .Written = {}};
}

Scalar Scalar::FromText(std::string_view V) {
  return {.Kind = Type::Text, .Flag = false, .Number = 0, .Whole = {}, .Written = V};
}

void Accept(const Slot& Into, const Scalar& Value, const PlaceOf& Place, FaultList& Faults) {
  if (!std::visit(Taker(Value, Place, Faults), Into)) Faults.AddInput("type", Place(), WrongType(Into, Shown(Value)));
}

std::string WrongType(const Slot& Into, std::string_view Found) {
  return Joined(std::visit(Wanted(), Into), ", found ", Found);
}

bool CheckWhole(const Scalar& Value, const WholeRule& Rule, const PlaceOf& Place, FaultList& Faults) {
  const bool isNumber = Value.Kind == Scalar::Type::Number;
  const bool isWhole = isNumber && std::trunc(Value.Number) == Value.Number;
  const bool isBelow = isWhole && (Value.Number < 0 || (Value.Whole && *Value.Whole < Rule.Least));
  if (!isWhole || isBelow) {
    Faults.AddInput(isBelow ? "range" : "type", Place(), Joined(WholeWanted(Rule), ", found ", Shown(Value)));
    return false;
  }
  if (!Value.Whole || *Value.Whole > Rule.Most) {
    Faults.AddLimit(Place(), Joined("must be at most ", Rule.Most, ", found ", Shown(Value)));
    return false;
  }
  return true;
}

bool CheckId(std::string_view Id, const PlaceOf& Place, FaultList& Faults) {
  const int count = CharacterCount(Id);
  if (FindBadUtf8(Id)) {
    Faults.AddInput("encoding", Place(), "must be UTF-8");
  } else if (Id.empty()) {
    Faults.AddInput("id", Place(), "must have at least one character");
  } else if (HasControlCharacter(Id)) {
    Faults.AddInput("id", Place(), Joined("must not hold control characters, found ", Quoted(Id)));
  } else if (count > limits::kIdCharacters) {
    Faults.AddLimit(Place(), Joined("must have at most ", limits::kIdCharacters, " characters, found ", count));
  } else {
    return true;
  }
  return false;
}

}  // namespace platenest::detail
