#include "JsonWriter.h"

#include <charconv>
#include <cmath>
#include <utility>

#include "Texts.h"
#include "platenest/job/JobErrors.h"

namespace platenest::detail {

namespace {

template <class T>
void AppendWhole(std::string& Out, T V) {
  char buffer[24];
  const std::to_chars_result end = std::to_chars(buffer, buffer + sizeof buffer, V);
  Out.append(buffer, end.ptr);
}

}  // namespace

void JsonWriter::Key(std::string_view Name) {
  Separate();
  FOpen.back().Key = Name;
  FText += '"';
  FText += Name;
  FText += "\": ";
}

void JsonWriter::Value(double V) {
  BeforeValue();
  if (!std::isfinite(V)) Refuse("range", "must be a finite number");
  AppendNumber(FText, V);
}

void JsonWriter::Value(Int64 V) {
  BeforeValue();
  AppendWhole(FText, V);
}

void JsonWriter::Value(std::uint64_t V) {
  BeforeValue();
  AppendWhole(FText, V);
}

void JsonWriter::Value(bool V) {
  BeforeValue();
  FText += V ? "true" : "false";
}

void JsonWriter::Value(std::string_view V) {
  BeforeValue();
  if (FindBadUtf8(V)) Refuse("encoding", "must be UTF-8");
  FText += '"';
  AppendEscaped(FText, V, true);
  FText += '"';
}

void JsonWriter::Value(std::span<const double> V) {
  BeginList(JsonStyle::Line);
  for (const double number : V) Value(number);
  EndList();
}

void JsonWriter::Null() {
  BeforeValue();
  FText += "null";
}

std::string JsonWriter::Text() && {
  FText += '\n';
  return std::move(FText);
}

void JsonWriter::Open(char Bracket, JsonStyle Style) {
  BeforeValue();
  const bool inLine = !FOpen.empty() && FOpen.back().Style == JsonStyle::Line;
  FOpen.push_back({inLine ? JsonStyle::Line : Style, Bracket == '[', 0, {}});
  FText += Bracket;
}

void JsonWriter::Close(char Bracket) {
  const Frame closed = FOpen.back();
  FOpen.pop_back();
  if (closed.Count > 0 && closed.Style == JsonStyle::Block) NewLine();
  FText += Bracket;
}

void JsonWriter::Separate() {
  Frame& top = FOpen.back();
  const bool block = top.Style == JsonStyle::Block;
  if (top.Count++ > 0) FText += block ? "," : ", ";
  if (block) NewLine();
}

void JsonWriter::BeforeValue() {
  if (!FOpen.empty() && FOpen.back().IsList) Separate();
}

void JsonWriter::NewLine() {
  FText += '\n';
  FText.append(2 * FOpen.size(), ' ');
}

void JsonWriter::Refuse(std::string_view Code, std::string_view What) const {
  std::string pointer;
  for (const Frame& frame : FOpen) {
    pointer += '/';
    pointer += frame.IsList ? std::to_string(frame.Count - 1) : std::string(frame.Key);
  }
  throw InputError(Fault{std::string(Code), std::move(pointer), std::string(What), ""});
}

}  // namespace platenest::detail
