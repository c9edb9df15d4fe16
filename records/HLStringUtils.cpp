#include "records/HLStringUtils.h"

#include <algorithm>

namespace HLDataSrvc::HLStringUtils {
namespace {

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// Adds the pieces of a text between separators, of which there is one more than separators.
void Split(std::string_view text, char separator, std::vector<std::string>& pieces) {
  for (;;) {
    const std::size_t end = text.find(separator);
    pieces.emplace_back(Trimmed(text.substr(0, end)));
    if (end == std::string_view::npos) return;
    text.remove_prefix(end + 1);
  }
}

}  // namespace

std::vector<std::string> SplitWords(std::string_view text) {
  std::vector<std::string> words{std::string(text)};
  for (const char separator : {' ', ',', ';'}) {
    std::vector<std::string> pieces;
    for (const std::string& word : words)
      Split(word, separator, pieces);
    std::stable_partition(pieces.begin(), pieces.end(),
                          [](const std::string& piece) { return !piece.empty(); });
    words = std::move(pieces);
  }
  return words;
}

}  // namespace HLDataSrvc::HLStringUtils
