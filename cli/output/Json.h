#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "jet/Value.h"

namespace cli {

/// A JSON document under construction; its objects keep their members in the order in which they were added.
class Json {
 public:
  using Member = std::pair<std::string, Json>;

  /// Null.
  Json() = default;
  Json(bool flag) : m_value(flag) {}
  template <std::integral Number>
  Json(Number number) : m_value(static_cast<std::int64_t>(number)) {}
  Json(double number) : m_value(number) {}
  Json(std::string text) : m_value(std::move(text)) {}
  Json(const char* text) : m_value(std::string(text)) {}
  /// An array.
  template <typename Element>
  Json(const std::vector<Element>& elements) : m_value(std::vector<Json>(elements.begin(), elements.end())) {}
  /// An object.
  Json(std::initializer_list<Member> members) : m_value(std::vector<Member>(members)) {}

  static Json Array();
  static Json Object();

  /// The member of that name of an object, or of what becomes one; Null when it is new.
  Json& operator[](std::string_view name);
  /// Adds an element to an array, or to what becomes one.
  void Append(Json element);

  /// What it is, to be looked into with std::visit.
  const auto& Get() const { return m_value; }

 private:
  std::variant<std::monostate, bool, std::int64_t, double, std::string, std::vector<Json>,
               std::vector<Member>>
      m_value;
};

/// A value as JSON text. Numbers are written exactly, amounts of money and decimals too; a number that JSON
/// cannot write (not a number, infinity), dates, GUIDs and binary become text.
std::string JsonText(const jet::Value& value);

/// Text as a JSON string with its quotes. Bytes that are not UTF-8 become U+FFFD.
std::string JsonText(std::string_view text);

/// A whole result, indented, for printing.
std::string JsonText(const Json& document);

}  // namespace cli
