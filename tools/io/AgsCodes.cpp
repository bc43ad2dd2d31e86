#include "AgsCodes.h"

#include "Numbers.h"

#include <algorithm>
#include <cctype>
#include <vector>

namespace xklink {

namespace {

bool IsUpper(char c) {
  return c >= 'A' && c <= 'Z';
}

bool IsLower(char c) {
  return c >= 'a' && c <= 'z';
}

// A word of the description without the punctuation around it: "(CLAY)." -> "CLAY".
std::string_view StripPunctuation(std::string_view word) {
  const auto isWordChar = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; };
  while (!word.empty() && !isWordChar(word.front())) {
    word.remove_prefix(1);
  }
  while (!word.empty() && !isWordChar(word.back())) {
    word.remove_suffix(1);
  }
  return word;
}

// CLAY, GRAVEL, MADE, SAND/GRAVEL: two capitals or more, nothing small.
bool IsCapitalWord(std::string_view word) {
  const auto capitals = std::count_if(word.begin(), word.end(), IsUpper);
  return capitals >= 2 && std::none_of(word.begin(), word.end(), IsLower);
}

// Whether the word ends a clause ("GROUND:", "CLAY,", "TOPSOIL."): the name stops there.
bool EndsClause(std::string_view word) {
  return !word.empty() && (word.back() == ':' || word.back() == ',' || word.back() == ';' ||
                           word.back() == '.' || word.back() == ')');
}

} // namespace

bool IsPlaceholderCode(std::string_view code) {
  code = TrimSpaces(code);
  if (code.size() == 3 && (code[0] == 'N' || code[0] == 'n') && code[1] == '/' &&
      (code[2] == 'A' || code[2] == 'a')) {
    return true;
  }
  return std::all_of(code.begin(), code.end(), [](char c) { return c == '-' || c == '?'; });
}

std::string PrincipalName(std::string_view description) {
  std::vector<std::string_view> words;
  std::size_t i = 0;
  while (i < description.size()) {
    const auto start = description.find_first_not_of(" \t\r\n", i);
    if (start == std::string_view::npos) {
      break;
    }
    const auto end = std::min(description.find_first_of(" \t\r\n", start), description.size());
    words.push_back(description.substr(start, end - start));
    i = end;
  }
  std::string name;
  for (std::size_t k = 0; k < words.size(); ++k) {
    const auto word = StripPunctuation(words[k]);
    if (IsCapitalWord(word)) {
      name += (name.empty() ? "" : " ") + std::string(word);
      if (EndsClause(words[k])) {
        break;
      }
      continue;
    }
    if (name.empty()) {
      continue;
    }
    // "SAND and GRAVEL": a name of two soils goes on over "and".
    if (word == "and" && k + 1 < words.size() && IsCapitalWord(StripPunctuation(words[k + 1]))) {
      name += " and";
      continue;
    }
    break;
  }
  return name;
}

} // namespace xklink
