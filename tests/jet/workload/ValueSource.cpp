#include "tests/jet/workload/ValueSource.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "jet/Text.h"
#include "jet/format/TextCodec.h"

namespace jet::test {
namespace {

/// A character and its UTF-16 units.
struct Character {
  std::string utf8;
  std::size_t units;
};

/// Characters that are hard to sort or to store.
const std::array<Character, 20> kAwkward{{{" ", 1},
                                          {"'", 1},
                                          {"-", 1},
                                          {"é", 1},
                                          {"ä", 1},
                                          {"ß", 1},
                                          {"Æ", 1},
                                          {"č", 1},
                                          {"_", 1},
                                          {".", 1},
                                          {"7", 1},
                                          {"Q", 1},
                                          {"€", 1},
                                          {"\"", 1},
                                          {"Ā", 1},  // low byte zero, so never
                                                     // compressed
                                          {"Ω", 1},
                                          {"漢", 1},
                                          {"😀", 2},
                                          {"\n", 1},
                                          {"が", 1}}};

}  // namespace

std::int64_t ValueSource::Number(std::int64_t low, std::int64_t high) {
  return std::uniform_int_distribution<std::int64_t>(low, high)(m_random);
}

std::string ValueSource::Text(std::size_t units, bool isKey) {
  std::string text;
  for (std::size_t used = 0; used < units;) {
    Character character{{}, 1};
    if (!isKey && used > 0 && used + 1 < units && Chance(0.1)) {  // blanks at the end would not count
      if (Chance(0.5)) {
        character = kAwkward[Below(kAwkward.size())];
      } else {
        const auto point = static_cast<char32_t>(Number(0x20, 0x1FFFF));
        AppendUtf8(point, character.utf8);
        character.units = point > 0xFFFF ? 2 : 1;
      }
    }
    if (!character.utf8.empty() && used + character.units < units) {
      text += character.utf8;
    } else {
      text.push_back(static_cast<char>('a' + Number(0, 25)));
      character.units = 1;
    }
    used += character.units;
  }
  return text;
}

std::size_t ValueSource::LongLength() {
  switch (Number(0, 9)) {
    case 0:
      return Below(4000) + 8200;  // a chain of several pieces
    case 1:
      return Below(40) + 4050;  // around a full page
    case 2:
    case 3:
      return Below(2000) + 60;
    case 4:
      return Below(10) + 58;  // around the longest inline value
    default:
      return Below(40) + 1;
  }
}

Bytes ValueSource::Random(std::size_t count) {
  Bytes bytes(count);
  for (auto& byte : bytes)
    byte = static_cast<std::byte>(m_random());
  return bytes;
}

Value ValueSource::Make(const ColumnSpec& column, bool isKey) {
  switch (column.type) {
    case ColumnType::YesNo:
      return Chance(0.5);
    case ColumnType::Byte:
      return static_cast<std::int32_t>(Number(0, 255));
    case ColumnType::Integer:
      return static_cast<std::int32_t>(Number(-32768, 32767));
    case ColumnType::Long:
      return static_cast<std::int32_t>(Chance(0.9) ? Number(-100000, 100000) : Number(INT32_MIN, INT32_MAX));
    case ColumnType::Currency:
      return Currency{Chance(0.9) ? Number(-100000000, 100000000) : Number(INT64_MIN, INT64_MAX)};
    case ColumnType::Single:
      return static_cast<float>(Number(-1000000, 1000000)) / 64.0F;
    case ColumnType::Double:
      return static_cast<double>(Number(-1000000000, 1000000000)) / 1024.0 *
             (Chance(0.1) ? std::numeric_limits<float>::max() : 1.0);
    case ColumnType::DateTime:
      return DateTime{static_cast<double>(Number(-100000, 100000)) +
                      static_cast<double>(Number(0, 86399)) / 86400.0};
    case ColumnType::Decimal: {
      Decimal decimal;
      decimal.words[0] = static_cast<std::uint32_t>(Number(1, UINT32_MAX));
      if (column.precision >= 18) decimal.words[1] = static_cast<std::uint32_t>(Number(0, 1000000));
      decimal.scale = column.scale;
      decimal.negative = Chance(0.5);
      return decimal;
    }
    case ColumnType::Guid: {
      Guid guid;
      for (auto& byte : guid.bytes)
        byte = static_cast<std::uint8_t>(Number(0, 255));
      return guid;
    }
    case ColumnType::Binary:
    case ColumnType::Block:
      return Random(1 + Below(column.length));
    case ColumnType::Ole:
      return Random(LongLength());
    case ColumnType::Memo:
      return Text(LongLength(), false);
    case ColumnType::Text:
      break;
  }
  const std::size_t length =
      Chance(0.8) ? 1 + Below(std::min<std::size_t>(column.length, 20)) : column.length;
  return Text(isKey ? std::min<std::size_t>(column.length, 10) : length, isKey);
}

}  // namespace jet::test
