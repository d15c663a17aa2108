#include "FormReader.h"

#include <algorithm>
#include <utility>

#include "Texts.h"

namespace platenest::detail {

namespace {

constexpr std::size_t kShownName = 200;  // bytes of a member name in a pointer

// A name as a JSON Pointer has it, on one line.
void AppendPointerName(std::string& Out, std::string_view Name) {
  std::string escaped;
  for (const char c : Name.substr(0, kShownName)) {
    if (c == '~') {
      escaped += "~0";
    } else if (c == '/') {
      escaped += "~1";
    } else {
      escaped += c;
    }
  }
  while (FindBadUtf8(escaped)) escaped.pop_back();  // a character that the cut went through
  AppendEscaped(Out, escaped, false);
  if (Name.size() > kShownName) Out += "...";
}

// Whether Seen holds the bit of the member Name of a form.
template <class T>
bool SeenIn(std::uint64_t Seen, std::string_view Name) {
  const std::span<const Field<T>> fields = FieldsOf<T>();
  const auto field = std::ranges::find(fields, Name, &Field<T>::Name);
  return field != fields.end() && (Seen & (std::uint64_t{1} << (field - fields.begin()))) != 0;
}

// What an object or list makes of its parts, by the kind of its slot: overloads for the kinds that have some, and one
// for the rest.
template <class T>
constexpr bool TakesObject(const T&) {
  return false;
}
template <class T>
constexpr bool TakesObject(const ObjectAt<T>&) {
  return true;
}

template <class T>
constexpr bool TakesList(const T&) {
  return false;
}
template <class T>
constexpr bool TakesList(const ListAt<T>&) {
  return true;
}
constexpr bool TakesList(const NumbersAt&) {
  return true;
}
constexpr bool TakesList(const IdsAt&) {
  return true;
}

template <class T>
Slot EntryAt(const T&, std::int64_t) {
  return Skip{};
}
Slot EntryAt(const NumbersAt& List, std::int64_t Index) {
  if (Index >= Size(List.Target)) return Skip{};
  return NumberAt{&List.Target[Index]};
}
Slot EntryAt(const ListAt<std::string>& List, std::int64_t Index) {
  if (Index >= List.Most) return Skip{};
  return TextAt{&List.Target->emplace_back()};
}
Slot EntryAt(const IdsAt& List, std::int64_t Index) {
  if (Index >= List.Most) return Skip{};
  return TextAt{&List.Target->emplace_back(), true};
}
Slot EntryAt(const ListAt<PolygonPoint>& List, std::int64_t Index) {
  if (Index >= List.Most) return Skip{};
  return NumbersAt{List.Target->emplace_back()};
}
Slot EntryAt(const ListAt<PolygonRing>& List, std::int64_t Index) {
  if (Index >= List.Most) return Skip{};
  return ListAt<PolygonPoint>{&List.Target->emplace_back(), limits::kCopies};  // paths of an answer may be long
}
template <class T>
Slot EntryAt(const ListAt<T>& List, std::int64_t Index) {
  if (Index >= List.Most) return Skip{};
  return ObjectAt<T>{&List.Target->emplace_back(Blank<T>())};
}

}  // namespace

FormReader::FormReader(Slot Root, FaultList& Faults)
    : FRoot(Root), FFaults(Faults), FPlace([this] { return Pointer(); }) {}

bool FormReader::Value(const Scalar& V) {
  Accept(Next(), V, FPlace, FFaults);
  return !FFaults.Full();
}

bool FormReader::BeginObject() {
  const Slot into = Next();
  Open(into, false, std::visit([](const auto& slot) { return TakesObject(slot); }, into));
  return !FFaults.Full();
}

bool FormReader::BeginList() {
  const Slot into = Next();
  Open(into, true, std::visit([](const auto& slot) { return TakesList(slot); }, into));
  return !FFaults.Full();
}

bool FormReader::Key(std::string Name) {
  Frame& top = FOpen.back();
  top.Name = std::move(Name);
  top.Member = std::visit([&](const auto& object) { return MemberAt(top, object); }, top.Into);
  return !FFaults.Full();
}

bool FormReader::End() {
  const Frame closed = std::move(FOpen.back());
  FOpen.pop_back();
  std::visit([&](const auto& slot) { CheckComplete(closed, slot); }, closed.Into);
  return !FFaults.Full();
}

void FormReader::Overflow(std::string_view Written) {
  Next();
  FFaults.AddInput("range", Pointer(),
                   Joined("must be a finite number, found ", Written.substr(0, 40), Written.size() > 40 ? "..." : ""));
}

// Where the value that begins now goes. Counts it.
Slot FormReader::Next() {
  if (FOpen.empty()) return FRoot;
  Frame& top = FOpen.back();
  if (!top.IsList) return top.Member;
  const std::int64_t index = top.Count++;
  return std::visit([&](const auto& list) { return EntryAt(list, index); }, top.Into);
}

void FormReader::Open(const Slot& Into, bool IsList, bool IsWanted) {
  if (!IsWanted && !std::holds_alternative<Skip>(Into)) {
    FFaults.AddInput("type", Pointer(), WrongType(Into, IsList ? "a list" : "an object"));
  }
  FOpen.push_back(
      {.Into = IsWanted ? Into : Skip{}, .IsList = IsList, .Count = 0, .Seen = 0, .Name = {}, .Member = Skip{}});
}

template <class T>
Slot FormReader::MemberAt(Frame&, const T&) {
  return Skip{};
}

template <class T>
Slot FormReader::MemberAt(Frame& Top, const ObjectAt<T>& Object) {
  const std::span<const Field<T>> fields = FieldsOf<T>();
  const auto field = std::ranges::find(fields, Top.Name, &Field<T>::Name);
  if (field == fields.end()) {
    FFaults.AddInput("unknown-key", Pointer(), Joined("is no key of this form", NearMiss(Top.Name, NamesOf<T>())));
    return Skip{};
  }
  const std::uint64_t bit = std::uint64_t{1} << (field - fields.begin());
  if ((Top.Seen & bit) != 0) {
    FFaults.AddInput("duplicate-key", Pointer(), "stands twice in the same object");
    return Skip{};
  }
  Top.Seen |= bit;
  return field->At(*Object.Target);
}

template <class T>
void FormReader::CheckComplete(const Frame&, const T&) {}

template <class T>
void FormReader::CheckComplete(const Frame& Closed, const ObjectAt<T>& Object) {
  std::uint64_t bit = 1;
  for (const Field<T>& field : FieldsOf<T>()) {
    const bool isRequired = field.Required && (field.When == nullptr || field.When(*Object.Target));
    const bool isSeen = (Closed.Seen & bit) != 0;
    const bool isReplaced = SeenIn<T>(Closed.Seen, field.Instead);
    if (isRequired && !isSeen && !isReplaced) FFaults.AddMissing(Pointer(), field.Name);
    if (isSeen && isReplaced)
      FFaults.AddInput("conflict", Joined(Pointer(), "/", field.Name),
                       Joined("must not stand beside `", field.Instead, "`"));
    bit <<= 1;
  }
}

void FormReader::CheckComplete(const Frame& Closed, const NumbersAt& List) {
  if (Closed.Count == Size(List.Target)) return;
  const std::string found = Joined("a list of ", Closed.Count);
  FFaults.AddInput("entries", Pointer(), WrongType(Closed.Into, found));
}

template <class T>
void FormReader::CheckComplete(const Frame& Closed, const ListAt<T>& List) {
  CheckMost(Closed.Count, List.Most);
}

void FormReader::CheckComplete(const Frame& Closed, const IdsAt& List) {
  if (Closed.Count == 0) FFaults.AddInput("entries", Pointer(), "must have at least 1 entry");
  CheckMost(Closed.Count, List.Most);
}

void FormReader::CheckMost(std::int64_t Count, std::int64_t Most) {
  if (Count <= Most) return;
  FFaults.AddLimit(Pointer(), Joined("must have at most ", Most, " entries, found ", Count));
}

std::string FormReader::Pointer() const {
  std::string pointer;
  for (const Frame& frame : FOpen) {
    pointer += '/';
    if (frame.IsList) {
      pointer += std::to_string(frame.Count - 1);
    } else {
      AppendPointerName(pointer, frame.Name);
    }
  }
  return pointer;
}

}  // namespace platenest::detail
