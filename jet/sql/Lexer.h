#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "jet/sql/Token.h"

namespace jet::sql {

/// Cuts a statement into tokens, one at a time. The text must outlive it. Never raises: what is no token
/// comes out as an invalid one, so that the parser can report in which clause it stands.
class Lexer {
 public:
  explicit Lexer(std::string_view text) : m_text(text) {}

  /// The next token; at the end of the text an End token, again and again.
  Token Next();

 private:
  Token Symbol(Token::Kind kind, std::size_t length);
  Token Invalid(const std::string& why);
  Token TextLiteral(char quote);
  Token NumberLiteral();
  Token DateLiteral();
  Token GuidLiteral();
  Token BracketedName();
  Token Word();
  char At(std::size_t position) const { return position < m_text.size() ? m_text[position] : '\0'; }

  std::string_view m_text;
  std::size_t m_begin = 0;  // of the token being read
  std::size_t m_at = 0;
};

}  // namespace jet::sql
