#pragma once

#include <cstddef>
#include <string>

#include "jet/Value.h"

namespace jet::sql {

/// The smallest unit of a statement.
struct Token {
  enum class Kind {
    End,
    Word,     ///< a name or keyword without brackets: `text`
    Name,     ///< a name in brackets: `text` is what stands between them
    Literal,  ///< a number, text, date or GUID: `value`
    Equal,
    NotEqual,
    Less,
    LessOrEqual,
    Greater,
    GreaterOrEqual,
    Plus,
    Minus,
    Star,
    Slash,
    Backslash,
    Caret,
    Ampersand,
    Dot,
    Comma,
    Open,
    Close,
    Semicolon,
    Invalid,  ///< `text` says why
  };

  Kind kind = Kind::End;
  std::string text;
  Value value;
  std::size_t begin = 0;  ///< where it stands in the statement, in bytes
  std::size_t end = 0;
};

}  // namespace jet::sql
