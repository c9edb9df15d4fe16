#include "cli/output/Json.h"

#include <algorithm>
#include <cmath>

#include <nlohmann/json.hpp>

#include "cli/output/ValueText.h"

namespace cli {
namespace {

using Written = nlohmann::ordered_json;

Written ToWritten(const Json& document);

struct ToWrittenVisitor {
  Written operator()(std::monostate) const { return nullptr; }
  Written operator()(const std::vector<Json>& elements) const {
    Written array = Written::array();
    for (const Json& element : elements)
      array.push_back(ToWritten(element));
    return array;
  }
  Written operator()(const std::vector<Json::Member>& members) const {
    Written object = Written::object();
    for (const auto& [name, value] : members)
      object[name] = ToWritten(value);
    return object;
  }
  template <typename Plain>
  Written operator()(const Plain& plain) const {
    return plain;
  }
};

Written ToWritten(const Json& document) {
  return std::visit(ToWrittenVisitor{}, document.Get());
}

std::string TextOf(const Written& document, int indent) {
  return document.dump(indent, ' ', false, Written::error_handler_t::replace);
}

}  // namespace

Json Json::Array() {
  Json json;
  json.m_value.emplace<std::vector<Json>>();
  return json;
}

Json Json::Object() {
  Json json;
  json.m_value.emplace<std::vector<Member>>();
  return json;
}

Json& Json::operator[](std::string_view name) {
  if (std::holds_alternative<std::monostate>(m_value)) m_value.emplace<std::vector<Member>>();
  auto& members = std::get<std::vector<Member>>(m_value);
  const auto found = std::find_if(members.begin(), members.end(),
                                  [&](const Member& member) { return member.first == name; });
  return found != members.end() ? found->second : members.emplace_back(name, Json()).second;
}

void Json::Append(Json element) {
  if (std::holds_alternative<std::monostate>(m_value)) m_value.emplace<std::vector<Json>>();
  std::get<std::vector<Json>>(m_value).push_back(std::move(element));
}

std::string JsonText(const jet::Value& value) {
  if (value.IsNull()) return "null";
  if (const bool* flag = value.As<bool>()) return *flag ? "true" : "false";
  const double* real = value.As<double>();
  const float* single = value.As<float>();
  const bool finite =
      (real == nullptr || std::isfinite(*real)) && (single == nullptr || std::isfinite(*single));
  const bool isNumber = real != nullptr || single != nullptr || value.As<std::int32_t>() != nullptr ||
                        value.As<jet::Currency>() != nullptr || value.As<jet::Decimal>() != nullptr;
  const std::string text = ValueText(value);
  return isNumber && finite ? text : JsonText(std::string_view(text));
}

std::string JsonText(std::string_view text) {
  return TextOf(Written(text), -1);
}

std::string JsonText(const Json& document) {
  return TextOf(ToWritten(document), 2);
}

}  // namespace cli
