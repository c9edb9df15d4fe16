#include "jet/file/FileNames.h"

#include <algorithm>

#include "jet/Error.h"

namespace jet::file_names {
namespace {

// Names that begin with this are handed to Windows as they are; the mark is the only place for a question
// mark.
constexpr const char* kVerbatimPrefix = R"(\\?\)";

bool IsForbidden(char c) {
  return c == '*' || c == '?' || static_cast<unsigned char>(c) < 0x20;
}

}  // namespace

void Check(const std::string& name) {
  const std::size_t start = name.rfind(kVerbatimPrefix, 0) == 0 ? std::string(kVerbatimPrefix).size() : 0;
  if (name.size() == start)
    throw Error(ErrorNumber::InvalidFileName, "The name of the database file is empty.");
  if (std::any_of(name.begin() + static_cast<std::ptrdiff_t>(start), name.end(), IsForbidden)) {
    throw Error(ErrorNumber::InvalidFileName, "'" + name + "' is not a valid file name.");
  }
  if (name.back() == '\\' || name.back() == '/') {
    throw Error(ErrorNumber::InvalidFileName, "'" + name + "' names a folder, not a file.");
  }
}

bool IsTemporary(const std::string& name) {
  constexpr std::size_t kDigits = 16;
  const std::string last = name.substr(Folder(name).size());
  return last.starts_with(kTemporaryPrefix) &&
         last.find_first_not_of("0123456789abcdef", std::string(kTemporaryPrefix).size()) ==
             std::string::npos &&
         last.size() == std::string(kTemporaryPrefix).size() + kDigits;
}

std::string Folder(const std::string& name) {
  const auto separator = name.find_last_of("\\/");
  return separator == std::string::npos ? std::string() : name.substr(0, separator + 1);
}

std::string WithExtension(const std::string& name, const std::string& extension) {
  const auto dot = name.rfind('.');
  const bool hasExtension = dot != std::string::npos && dot > Folder(name).size();
  return (hasExtension ? name.substr(0, dot) : name) + extension;
}

}  // namespace jet::file_names
