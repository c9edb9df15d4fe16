#include "jet/sql/Lexer.h"

#include <optional>
#include <utility>

#include "jet/Text.h"
#include "jet/sql/Characters.h"
#include "jet/sql/Literals.h"

namespace jet::sql {

Token Lexer::Symbol(Token::Kind kind, std::size_t length) {
  m_at += length;
  Token token;
  token.kind = kind;
  token.begin = m_begin;
  token.end = m_at;
  return token;
}

Token Lexer::Invalid(const std::string& why) {
  m_at = m_text.size();
  Token token = Symbol(Token::Kind::Invalid, 0);
  token.text = why;
  return token;
}

Token Lexer::TextLiteral(char quote) {
  std::string text;
  for (++m_at; m_at < m_text.size(); ++m_at) {
    if (m_text[m_at] == quote) {
      ++m_at;
      if (At(m_at) != quote) {
        Token token = Symbol(Token::Kind::Literal, 0);
        token.value = Value(std::move(text));
        return token;
      }
    }
    text += m_text[m_at];
  }
  return Invalid("a text in quotes is never closed");
}

Token Lexer::NumberLiteral() {
  // Consume the whole run, valid (1.5) or not (3abc).: 1.5, 1e-3, but also 3abc and 1.2.3.
  while (m_at < m_text.size()) {
    const char c = m_text[m_at];
    const bool signOfExponent =
        (c == '+' || c == '-') && (m_text[m_at - 1] == 'e' || m_text[m_at - 1] == 'E');
    if (!IsInWord(c) && c != '.' && !signOfExponent) break;
    ++m_at;
  }
  const std::string_view text = m_text.substr(m_begin, m_at - m_begin);
  std::optional<Value> number = ParseNumber(text);
  if (!number) return Invalid("'" + std::string(text) + "' is not a number");
  Token token = Symbol(Token::Kind::Literal, 0);
  token.value = *std::move(number);
  return token;
}

Token Lexer::DateLiteral() {
  const std::size_t close = m_text.find('#', m_at + 1);
  if (close == std::string_view::npos) return Invalid("a date between # is never closed");
  const std::string_view text = m_text.substr(m_at + 1, close - m_at - 1);
  const std::optional<DateTime> date = ParseDateLiteral(Trim(text));
  if (!date) return Invalid("'" + std::string(text) + "' is not a date such as #2024-09-05#");
  m_at = close + 1;
  Token token = Symbol(Token::Kind::Literal, 0);
  token.value = *date;
  return token;
}

Token Lexer::GuidLiteral() {
  constexpr std::string_view kWord = "guid";
  const std::size_t close = m_text.find("}}", m_at);
  if (close == std::string_view::npos) return Invalid("a GUID is never closed by '}}'");
  std::string_view text = Trim(m_text.substr(m_at + 1, close - m_at));
  const bool hasWord = SameWord(text.substr(0, kWord.size()), kWord);
  if (hasWord) text = Trim(text.substr(kWord.size()));
  const std::optional<Guid> guid = hasWord ? ParseGuid(text) : std::nullopt;
  if (!guid) return Invalid("not a GUID such as {guid {01234567-89AB-CDEF-0123-456789ABCDEF}}");
  m_at = close + 2;
  Token token = Symbol(Token::Kind::Literal, 0);
  token.value = *guid;
  return token;
}

Token Lexer::BracketedName() {
  const std::size_t close = m_text.find(']', m_at + 1);
  if (close == std::string_view::npos) return Invalid("a name in brackets is never closed");
  const std::string_view name = m_text.substr(m_at + 1, close - m_at - 1);
  m_at = close + 1;
  Token token = Symbol(Token::Kind::Name, 0);
  token.text = name;
  return token;
}

Token Lexer::Word() {
  while (m_at < m_text.size() && IsInWord(m_text[m_at]))
    ++m_at;
  Token token = Symbol(Token::Kind::Word, 0);
  token.text = m_text.substr(m_begin, m_at - m_begin);
  return token;
}

Token Lexer::Next() {
  using Kind = Token::Kind;
  while (m_at < m_text.size() && IsBlank(m_text[m_at]))
    ++m_at;
  m_begin = m_at;
  if (m_at == m_text.size()) return Symbol(Kind::End, 0);
  const char c = m_text[m_at];
  const char following = At(m_at + 1);
  if (BeginsWord(c)) return Word();
  if (IsDigit(c) || (c == '.' && IsDigit(following))) return NumberLiteral();
  switch (c) {
    case '\'':
    case '"':
      return TextLiteral(c);
    case '[':
      return BracketedName();
    case '#':
      return DateLiteral();
    case '{':
      return GuidLiteral();
    case '=':
      return Symbol(Kind::Equal, 1);
    case '<':
      if (following == '>') return Symbol(Kind::NotEqual, 2);
      return following == '=' ? Symbol(Kind::LessOrEqual, 2) : Symbol(Kind::Less, 1);
    case '>':
      return following == '=' ? Symbol(Kind::GreaterOrEqual, 2) : Symbol(Kind::Greater, 1);
    case '+':
      return Symbol(Kind::Plus, 1);
    case '-':
      return Symbol(Kind::Minus, 1);
    case '*':
      return Symbol(Kind::Star, 1);
    case '/':
      return Symbol(Kind::Slash, 1);
    case '\\':
      return Symbol(Kind::Backslash, 1);
    case '^':
      return Symbol(Kind::Caret, 1);
    case '&':
      return Symbol(Kind::Ampersand, 1);
    case '.':
      return Symbol(Kind::Dot, 1);
    case ',':
      return Symbol(Kind::Comma, 1);
    case '(':
      return Symbol(Kind::Open, 1);
    case ')':
      return Symbol(Kind::Close, 1);
    case ';':
      return Symbol(Kind::Semicolon, 1);
    default:
      return Invalid("a character that has no meaning there");
  }
}

}  // namespace jet::sql
