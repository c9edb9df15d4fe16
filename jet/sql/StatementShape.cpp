#include "jet/sql/StatementShape.h"

#include <algorithm>

#include "jet/sql/Characters.h"

namespace jet::sql {
namespace {

constexpr std::size_t kMostDigits = 9;  // such numbers fit 32 bits

/// Behind what begins at `at`: a text, date, GUID, name, word or number, or any other character.
std::size_t EndOfPiece(std::string_view statement, std::size_t at) {
  const char first = statement[at];
  if (BeginsWord(first) || IsDigit(first)) {
    while (at < statement.size() && (IsInWord(statement[at]) || statement[at] == '.'))
      ++at;
    return at;
  }
  if (first != '\'' && first != '"' && first != '[' && first != '#' && first != '{') return at + 1;
  const std::size_t close = statement.find(first == '[' ? ']' : first == '{' ? '}' : first, at + 1);
  return close == std::string_view::npos ? statement.size() : close + 1;
}

}  // namespace

void StatementShape::Take(std::string_view statement) {
  text.clear();
  numbers.count = 0;
  std::size_t copied = 0;
  for (std::size_t at = 0; at < statement.size();) {
    const std::size_t end = EndOfPiece(statement, at);
    const std::string_view piece = statement.substr(at, end - at);
    const bool isNumber = IsDigit(piece.front()) && piece.size() <= kMostDigits &&
                          numbers.count < StatementNumbers::kMost && (at == 0 || statement[at - 1] != '.') &&
                          std::all_of(piece.begin(), piece.end(), IsDigit);
    if (isNumber) {
      std::int32_t number = 0;
      for (const char digit : piece)
        number = number * 10 + (digit - '0');
      text.append(statement, copied, at - copied);
      text += kPlaceholder;
      places[numbers.count] = at;
      numbers.values[numbers.count++] = number;
      copied = end;
    }
    at = end;
  }
  text.append(statement, copied);
}

// Pieces end where they end whatever number follows, so that text that is equal is equal in pieces.
bool StatementShape::TakeIfLike(std::string_view shape, std::string_view statement) {
  numbers.count = 0;
  for (std::size_t at = 0;;) {
    const std::size_t length = std::min(shape.find(kPlaceholder), shape.size());
    if (statement.compare(at, length, shape, 0, length) != 0) return false;
    at += length;
    if (length == shape.size()) return at == statement.size();
    shape.remove_prefix(length + 1);
    const std::size_t begin = at;
    std::int32_t number = 0;
    for (; at < statement.size() && at - begin < kMostDigits && IsDigit(statement[at]); ++at)
      number = number * 10 + (statement[at] - '0');
    const bool goesOn = at < statement.size() && (IsInWord(statement[at]) || statement[at] == '.');
    if (at == begin || goesOn) return false;
    numbers.values[numbers.count++] = number;
  }
}

}  // namespace jet::sql
