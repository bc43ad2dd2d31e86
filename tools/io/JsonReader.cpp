#include "JsonReader.h"

#include "SourceFile.h"
#include "Text.h"

#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <unordered_map>
#include <utility>

namespace xklink {

namespace {

using Json = nlohmann::ordered_json;

// A character iterator that tells how far the JSON lexer has read, so that each value can be given
// the line it stands on (nlohmann::json keeps no positions in its values).
class CountingIterator {
public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  CountingIterator() = default;
  CountingIterator(const char* position, const char* begin, std::size_t* consumed)
      : m_position(position), m_begin(begin), m_consumed(consumed) {}

  reference operator*() const { return *m_position; }
  CountingIterator& operator++() {
    ++m_position;
    *m_consumed = static_cast<std::size_t>(m_position - m_begin);
    return *this;
  }
  CountingIterator operator++(int) {
    CountingIterator before = *this;
    ++*this;
    return before;
  }
  bool operator==(const CountingIterator& other) const { return m_position == other.m_position; }
  bool operator!=(const CountingIterator& other) const { return m_position != other.m_position; }

private:
  const char* m_position = nullptr;
  const char* m_begin = nullptr;
  std::size_t* m_consumed = nullptr;
};

// "/boreholes/3/strata/0/top" in JSON pointer syntax.
std::string ChildPath(const std::string& parent, const std::string& key) {
  std::string escaped;
  for (const char c : key) {
    escaped += c == '~' ? "~0" : c == '/' ? "~1" : std::string(1, c);
  }
  return parent + "/" + escaped;
}

// Builds the document from nlohmann's SAX events and notes the line of every member and element
// that the schema may name in a message: the root and its members, "boreholes" and each hole, the
// members of a hole, its "strata" and each stratum with its members. Nothing below is ever named,
// and keeping a path for every value there made memory grow with the square of the input: 64 kB
// of nested brackets, or a long key over a long array, took gigabytes.
class LocatingBuilder {
public:
  LocatingBuilder(std::string file, const LineIndex& lines, const std::size_t& consumed)
      : m_file(std::move(file)), m_lines(lines), m_consumed(consumed) {}

  bool null() { return Add(Json(nullptr)); }
  bool boolean(bool value) { return Add(Json(value)); }
  bool number_integer(Json::number_integer_t value) { return Add(Json(value)); }
  bool number_unsigned(Json::number_unsigned_t value) { return Add(Json(value)); }
  bool number_float(Json::number_float_t value, const std::string& /*text*/) {
    return Add(Json(value));
  }
  bool string(std::string& value) { return Add(Json(std::move(value))); }
  bool binary(Json::binary_t& value) { return Add(Json(std::move(value))); }
  bool start_object(std::size_t /*elements*/) { return Open(Json::object()); }
  bool start_array(std::size_t /*elements*/) { return Open(Json::array()); }
  bool end_object() { return Close(); }
  bool end_array() { return Close(); }

  bool key(std::string& name) {
    Frame& frame = m_frames.back();
    const auto [first, inserted] = frame.keys.emplace(name, CurrentLine());
    if (!inserted) {
      throw ParseError({m_file, CurrentLine(), name},
                       "duplicate key in the same object (first at line " +
                           std::to_string(first->second) + ")");
    }
    m_key = name;
    if (frame.path) {
      m_linesByPath[ChildPath(*frame.path, name)] = CurrentLine();
    }
    return true;
  }

  bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                   const nlohmann::detail::exception& error) {
    // "[json.exception.parse_error.101] parse error at line 3, column 5: syntax error ..." ->
    // "syntax error ...": our own location replaces theirs.
    std::string message = error.what();
    if (const auto bracket = message.find("] ");
        message.front() == '[' && bracket != std::string::npos) {
      message.erase(0, bracket + 2);
    }
    if (const auto colon = message.find(": ");
        message.rfind("parse error", 0) == 0 && colon != std::string::npos) {
      message.erase(0, colon + 2);
    }
    throw ParseError({m_file, CurrentLine(), {}}, "JSON: " + message);
  }

  Json TakeDocument() { return std::move(m_root); }
  std::unordered_map<std::string, std::size_t> TakeLines() { return std::move(m_linesByPath); }

private:
  struct Frame {
    Json* value;
    std::optional<std::string> path; // only when the lines of the members are kept
    std::size_t nextIndex = 0;
    std::map<std::string, std::size_t> keys; // member -> line, to name the first of a duplicate
  };

  // Whether the lines of the members of a container are kept: the container at `depth` (the root
  // is 0) reached through `step` (a key or an index) from a container whose lines are kept.
  static bool KeepsLines(std::size_t depth, const std::string& step) {
    switch (depth) {
    case 0: // the document
    case 2: // a hole
    case 4: // a stratum
      return true;
    case 1:
      return step == "boreholes";
    case 3:
      return step == "strata";
    default:
      return false;
    }
  }

  std::size_t CurrentLine() const { return m_lines.LineOf(m_consumed == 0 ? 0 : m_consumed - 1); }

  // Places a value in the open container and returns it with its path, when the lines of its
  // members are to be kept.
  std::pair<Json*, std::optional<std::string>> Place(Json&& value) {
    if (m_frames.empty()) {
      m_root = std::move(value);
      m_linesByPath[""] = CurrentLine();
      return {&m_root, ""};
    }
    Frame& frame = m_frames.back();
    Json* placed = nullptr;
    std::string step;
    if (frame.value->is_array()) {
      step = std::to_string(frame.nextIndex++);
      frame.value->push_back(std::move(value));
      placed = &frame.value->back();
    } else {
      step = m_key;
      placed = &((*frame.value)[m_key] = std::move(value));
    }
    if (!frame.path) {
      return {placed, std::nullopt};
    }
    auto path = ChildPath(*frame.path, step);
    if (frame.value->is_array()) {
      m_linesByPath[path] = CurrentLine(); // a member's line is noted at its key
    }
    if (!KeepsLines(m_frames.size(), step)) {
      return {placed, std::nullopt};
    }
    return {placed, std::move(path)};
  }

  bool Add(Json&& value) {
    Place(std::move(value));
    return true;
  }
  bool Open(Json&& container) {
    auto [value, path] = Place(std::move(container));
    m_frames.push_back({value, std::move(path), 0, {}});
    return true;
  }
  bool Close() {
    m_frames.pop_back();
    return true;
  }

  std::string m_file;
  const LineIndex& m_lines;
  const std::size_t& m_consumed;
  Json m_root;
  std::vector<Frame> m_frames;
  std::string m_key;
  std::unordered_map<std::string, std::size_t> m_linesByPath;
};

const char* TypeName(const Json& value) {
  if (value.is_number()) {
    return "a number";
  }
  if (value.is_string()) {
    return "a string";
  }
  if (value.is_boolean()) {
    return "true or false";
  }
  if (value.is_null()) {
    return "null";
  }
  if (value.is_array()) {
    return "an array";
  }
  return "an object";
}

// Reads the boreholes out of the document, naming the line of each member in errors.
class BoreholeSchema {
public:
  BoreholeSchema(std::string file, std::unordered_map<std::string, std::size_t> lines,
                 BoreholeSet& set)
      : m_file(std::move(file)), m_lines(std::move(lines)), m_set(set) {}

  void Read(const Json& root) {
    if (!root.is_object()) {
      throw ParseError(Ref("", {}), "expected an object {\"boreholes\": [...]}, found " +
                                        std::string(TypeName(root)));
    }
    WarnUnknown(root, "", {"boreholes"}, {});
    const Json& holes = Member(root, "", "boreholes");
    if (!holes.is_array()) {
      throw ParseError(Ref("/boreholes", "boreholes"),
                       "expected an array of boreholes, found " + std::string(TypeName(holes)));
    }
    for (std::size_t i = 0; i < holes.size(); ++i) {
      ReadHole(holes[i], ChildPath("/boreholes", std::to_string(i)));
    }
  }

private:
  std::size_t Line(const std::string& path) const {
    const auto it = m_lines.find(path);
    return it == m_lines.end() ? 0 : it->second;
  }
  SourceRef Ref(const std::string& path, std::string field) const {
    return {m_file, Line(path), std::move(field)};
  }

  const Json& Member(const Json& object, const std::string& path, const std::string& key) const {
    const auto it = object.find(key);
    if (it == object.end()) {
      throw ParseError(Ref(path, key), "missing");
    }
    return *it;
  }

  double Number(const Json& object, const std::string& path, const std::string& key) const {
    const Json& value = Member(object, path, key);
    if (!value.is_number()) {
      throw ParseError(Ref(ChildPath(path, key), key),
                       std::string("expected a number, found ") + TypeName(value));
    }
    return value.get<double>();
  }

  std::string Text(const Json& object, const std::string& path, const std::string& key) const {
    const Json& value = Member(object, path, key);
    if (!value.is_string()) {
      throw ParseError(Ref(ChildPath(path, key), key),
                       std::string("expected a string, found ") + TypeName(value));
    }
    return value.get<std::string>();
  }

  void WarnUnknown(const Json& object, const std::string& path,
                   std::initializer_list<const char*> known, const std::string& hole) {
    for (const auto& [key, value] : object.items()) {
      // An init-capture, not [&]: clang before 16 cannot capture a structured binding.
      const auto isKnown = [&name = key](const char* k) { return name == k; };
      if (std::find_if(known.begin(), known.end(), isKnown) == known.end()) {
        m_set.diagnostics.push_back(
            MakeWarning(Ref(ChildPath(path, key), key), "unknown member, ignored", hole));
      }
    }
  }

  void ReadHole(const Json& object, const std::string& path) {
    if (!object.is_object()) {
      throw ParseError(Ref(path, "boreholes"),
                       "expected a borehole object, found " + std::string(TypeName(object)));
    }
    HoleRecord hole;
    hole.name = Text(object, path, "name");
    if (hole.name.empty()) {
      throw ParseError(Ref(ChildPath(path, "name"), "name"), "empty: a borehole needs a name");
    }
    hole.where = Ref(path, "name");
    hole.x = Number(object, path, "x");
    hole.y = Number(object, path, "y");
    hole.top = Number(object, path, "top");
    WarnUnknown(object, path, {"name", "x", "y", "top", "strata"}, hole.name);
    const Json& strata = Member(object, path, "strata");
    const auto strataPath = ChildPath(path, "strata");
    if (!strata.is_array()) {
      throw ParseError(Ref(strataPath, "strata"),
                       "expected an array of strata, found " + std::string(TypeName(strata)));
    }
    for (std::size_t i = 0; i < strata.size(); ++i) {
      hole.strata.push_back(
          ReadStratum(strata[i], ChildPath(strataPath, std::to_string(i)), hole.name));
    }
    m_set.holes.push_back(std::move(hole));
  }

  StratumRecord ReadStratum(const Json& object, const std::string& path, const std::string& hole) {
    if (!object.is_object()) {
      throw ParseError(Ref(path, "strata"),
                       "expected a stratum object, found " + std::string(TypeName(object)));
    }
    StratumRecord stratum;
    stratum.where = Ref(path, "code");
    stratum.dc.strName = FromUtf8(Text(object, path, "code"), Ref(ChildPath(path, "code"), "code"));
    stratum.dc.dTopGC = Number(object, path, "top");
    stratum.dc.dBotGC = Number(object, path, "bottom");
    if (object.contains("aux")) {
      stratum.dc.dAux = Number(object, path, "aux");
    }
    if (const auto flag = object.find("flag"); flag != object.end()) {
      if (!flag->is_boolean()) {
        throw ParseError(Ref(ChildPath(path, "flag"), "flag"),
                         std::string("expected true or false, found ") + TypeName(*flag));
      }
      stratum.dc.bAux = flag->get<bool>();
    }
    if (stratum.dc.strName.empty()) {
      m_set.diagnostics.push_back(
          MakeWarning(stratum.where, "empty code: the stratum gets an empty code", hole));
    }
    WarnUnknown(object, path, {"code", "top", "bottom", "aux", "flag"}, hole);
    return stratum;
  }

  std::string m_file;
  std::unordered_map<std::string, std::size_t> m_lines;
  BoreholeSet& m_set;
};

} // namespace

BoreholeSet ReadJsonBoreholes(std::string_view raw, const std::string& file,
                              const ReadOptions& /*options*/) {
  const auto text = StripUtf8Bom(raw);
  RequireUtf8Text(text, file);
  const LineIndex lines(text);
  std::size_t consumed = 0;
  LocatingBuilder builder(file, lines, consumed);
  const CountingIterator first(text.data(), text.data(), &consumed);
  const CountingIterator last(text.data() + text.size(), text.data(), &consumed);
  Json::sax_parse(first, last, &builder);

  BoreholeSet set;
  set.source = file;
  BoreholeSchema(file, builder.TakeLines(), set).Read(builder.TakeDocument());
  return set;
}

} // namespace xklink
