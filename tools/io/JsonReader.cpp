#include "JsonReader.h"

#include "SourceFile.h"
#include "Text.h"

#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

namespace xklink {

namespace {

using Json = nlohmann::json; // for the types of the parser's events; no document is built

// A character iterator that tells how far the JSON lexer has read, so that each value can be given
// the line it stands on.
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

// A member of a hole or a stratum as the file gave it: its kind, its value when it is one the tool
// reads, and the line of its key.
struct Member {
  enum class Kind { Absent, Null, Boolean, Number, String, Array, Object };
  Kind kind = Kind::Absent;
  double number = 0.0;
  bool boolean = false;
  std::string text;
  std::size_t line = 0;

  static Member Of(Kind kind) {
    Member m;
    m.kind = kind;
    return m;
  }
};

const char* TypeName(Member::Kind kind) {
  switch (kind) {
  case Member::Kind::Number:
    return "a number";
  case Member::Kind::String:
    return "a string";
  case Member::Kind::Boolean:
    return "true or false";
  case Member::Kind::Null:
    return "null";
  case Member::Kind::Array:
    return "an array";
  default:
    return "an object";
  }
}

// What an open object or array stands for in the borehole schema.
enum class Role { Root, Boreholes, Hole, Strata, Stratum, Ignored };

struct Frame {
  Role role;
  bool object;
  std::size_t line;                                  // where it opened
  std::unordered_map<std::string, std::size_t> keys; // member -> line, to name a duplicate's first
  std::string key;                                   // the member whose value comes next
  std::size_t keyLine = 0;
};

// A stratum or hole being read, with the members the tool uses and its warnings.
struct PendingStratum {
  std::size_t line = 0;
  Member code, top, bottom, aux, flag;
  std::vector<std::pair<SourceRef, std::string>> warnings;
};

struct PendingHole {
  std::size_t line = 0;
  Member name, x, y, top, strata;
  std::vector<std::pair<SourceRef, std::string>> warnings; // its own, then its strata's
  std::vector<StratumRecord> strataRead;
  std::vector<std::pair<SourceRef, std::string>> strataWarnings;
  std::optional<ParseError> strataError; // the first stratum that could not be read
};

// Reads the boreholes from the parser's events, one value at a time, keeping only the members the
// tool uses: no document is built, so a file costs memory for its holes and strata and for the
// containers open at one time, whatever the shape of the members it ignores.
//
// A problem of the schema (a missing member, a mistyped value) is noted and reported once the
// whole file has been parsed, so that a syntax error anywhere comes first, as it would from a
// reader that parses before it looks; among problems of the schema, the first hole's comes first,
// and within a hole, its own members come before its strata, in the order name, x, y, top, strata.
class BoreholeHandler {
public:
  BoreholeHandler(std::string file, const LineIndex& lines, const std::size_t& consumed)
      : m_file(std::move(file)), m_lines(lines), m_consumed(consumed) {}

  bool null() { return Scalar(Member::Of(Member::Kind::Null)); }
  bool boolean(bool value) {
    Member m = Member::Of(Member::Kind::Boolean);
    m.boolean = value;
    return Scalar(std::move(m));
  }
  bool number_integer(Json::number_integer_t value) { return Number(static_cast<double>(value)); }
  bool number_unsigned(Json::number_unsigned_t value) { return Number(static_cast<double>(value)); }
  bool number_float(Json::number_float_t value, const std::string& /*text*/) {
    return Number(value);
  }
  bool string(std::string& value) {
    Member m = Member::Of(Member::Kind::String);
    m.text = std::move(value);
    return Scalar(std::move(m));
  }
  bool binary(Json::binary_t& /*value*/) { return Scalar(Member::Of(Member::Kind::Null)); }
  bool start_object(std::size_t /*elements*/) { return Open(true); }
  bool start_array(std::size_t /*elements*/) { return Open(false); }
  bool end_object() { return Close(); }
  bool end_array() { return Close(); }

  bool key(std::string& name) {
    Frame& frame = m_frames.back();
    const std::size_t line = CurrentLine();
    const auto [first, inserted] = frame.keys.emplace(name, line);
    if (!inserted) {
      throw ParseError({m_file, line, name}, "duplicate key in the same object (first at line " +
                                                 std::to_string(first->second) + ")");
    }
    frame.key = std::move(name);
    frame.keyLine = line;
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

  // The set read, or the first problem of the schema; to be called once the parse is complete.
  BoreholeSet Take() {
    if (m_error) {
      throw *m_error;
    }
    BoreholeSet set;
    set.source = m_file;
    set.holes = std::move(m_holes);
    set.diagnostics = std::move(m_rootWarnings);
    for (Diagnostic& d : m_holeWarnings) {
      set.diagnostics.push_back(std::move(d));
    }
    return set;
  }

private:
  std::size_t CurrentLine() const { return m_lines.LineOf(m_consumed == 0 ? 0 : m_consumed - 1); }
  SourceRef Ref(std::size_t line, std::string field) const {
    return {m_file, line, std::move(field)};
  }
  void Fail(SourceRef where, const std::string& message) {
    if (!m_error) {
      m_error.emplace(std::move(where), message);
    }
  }

  bool Number(double value) {
    Member m = Member::Of(Member::Kind::Number);
    m.number = value;
    return Scalar(std::move(m));
  }

  bool Scalar(Member value) {
    Place(std::move(value));
    return true;
  }

  bool Open(bool object) {
    if (m_frames.size() >= kMaxJsonNesting) {
      // Named after the innermost member it lies in: in "[[[..." under "notes", field notes.
      std::string field;
      for (auto frame = m_frames.rbegin(); frame != m_frames.rend() && field.empty(); ++frame) {
        field = frame->object ? frame->key : std::string();
      }
      throw ParseError({m_file, CurrentLine(), field}, "JSON nested more than " +
                                                           std::to_string(kMaxJsonNesting) +
                                                           " levels deep; a borehole file needs 5");
    }
    const Role role = Place(Member::Of(object ? Member::Kind::Object : Member::Kind::Array));
    m_frames.push_back({role, object, CurrentLine(), {}, {}, 0});
    return true;
  }

  bool Close() {
    const Frame frame = std::move(m_frames.back());
    m_frames.pop_back();
    switch (frame.role) {
    case Role::Root:
      if (!m_sawBoreholes) {
        Fail(Ref(frame.line, "boreholes"), "missing");
      }
      break;
    case Role::Hole:
      FinishHole();
      break;
    case Role::Stratum:
      FinishStratum();
      break;
    default:
      break;
    }
    return true;
  }

  // Takes a value (a scalar, or the start of a container) where it stands in the schema and returns
  // what it is, for a container to be pushed.
  Role Place(Member value) {
    const Member::Kind kind = value.kind;
    if (m_frames.empty()) {
      if (kind != Member::Kind::Object) {
        Fail(Ref(CurrentLine(), {}),
             std::string("expected an object {\"boreholes\": [...]}, found ") + TypeName(kind));
        return Role::Ignored;
      }
      return Role::Root;
    }
    Frame& parent = m_frames.back();
    value.line = parent.object ? parent.keyLine : CurrentLine();
    switch (parent.role) {
    case Role::Root:
      if (parent.key != "boreholes") {
        m_rootWarnings.push_back(
            MakeWarning(Ref(value.line, parent.key), "unknown member, ignored"));
        return Role::Ignored;
      }
      m_sawBoreholes = true;
      if (kind != Member::Kind::Array) {
        Fail(Ref(value.line, "boreholes"),
             std::string("expected an array of boreholes, found ") + TypeName(kind));
        return Role::Ignored;
      }
      return Role::Boreholes;
    case Role::Boreholes:
      if (kind != Member::Kind::Object) {
        Fail(Ref(value.line, "boreholes"),
             std::string("expected a borehole object, found ") + TypeName(kind));
        return Role::Ignored;
      }
      m_hole = PendingHole{};
      m_hole.line = value.line;
      return Role::Hole;
    case Role::Hole:
      return PlaceInHole(parent.key, std::move(value));
    case Role::Strata:
      if (kind != Member::Kind::Object) {
        if (!m_hole.strataError) {
          m_hole.strataError.emplace(Ref(value.line, "strata"),
                                     std::string("expected a stratum object, found ") +
                                         TypeName(kind));
        }
        return Role::Ignored;
      }
      m_stratum = PendingStratum{};
      m_stratum.line = value.line;
      return Role::Stratum;
    case Role::Stratum:
      return PlaceInStratum(parent.key, std::move(value));
    default:
      return Role::Ignored;
    }
  }

  Role PlaceInHole(const std::string& key, Member value) {
    const Member::Kind kind = value.kind;
    Member* slot = key == "name"     ? &m_hole.name
                   : key == "x"      ? &m_hole.x
                   : key == "y"      ? &m_hole.y
                   : key == "top"    ? &m_hole.top
                   : key == "strata" ? &m_hole.strata
                                     : nullptr;
    if (slot == nullptr) {
      m_hole.warnings.emplace_back(Ref(value.line, key), "unknown member, ignored");
      return Role::Ignored;
    }
    *slot = std::move(value);
    return slot == &m_hole.strata && kind == Member::Kind::Array ? Role::Strata : Role::Ignored;
  }

  Role PlaceInStratum(const std::string& key, Member value) {
    Member* slot = key == "code"     ? &m_stratum.code
                   : key == "top"    ? &m_stratum.top
                   : key == "bottom" ? &m_stratum.bottom
                   : key == "aux"    ? &m_stratum.aux
                   : key == "flag"   ? &m_stratum.flag
                                     : nullptr;
    if (slot == nullptr) {
      m_stratum.warnings.emplace_back(Ref(value.line, key), "unknown member, ignored");
    } else {
      *slot = std::move(value);
    }
    return Role::Ignored;
  }

  // The member as the kind the schema asks for: "missing" names the object's line, a wrong kind
  // the member's own.
  const Member& Require(const Member& member, Member::Kind kind, std::size_t objectLine,
                        const char* key) const {
    if (member.kind == Member::Kind::Absent) {
      throw ParseError(Ref(objectLine, key), "missing");
    }
    if (member.kind != kind) {
      const char* expected = kind == Member::Kind::Number   ? "a number"
                             : kind == Member::Kind::String ? "a string"
                                                            : "true or false";
      throw ParseError(Ref(member.line, key),
                       std::string("expected ") + expected + ", found " + TypeName(member.kind));
    }
    return member;
  }

  void FinishStratum() {
    if (m_error || m_hole.strataError) {
      return;
    }
    const PendingStratum& s = m_stratum;
    try {
      StratumRecord stratum;
      stratum.where = Ref(s.line, "code");
      const Member& code = Require(s.code, Member::Kind::String, s.line, "code");
      stratum.dc.strName = FromUtf8(code.text, Ref(code.line, "code"));
      stratum.dc.dTopGC = Require(s.top, Member::Kind::Number, s.line, "top").number;
      stratum.dc.dBotGC = Require(s.bottom, Member::Kind::Number, s.line, "bottom").number;
      if (s.aux.kind != Member::Kind::Absent) {
        stratum.dc.dAux = Require(s.aux, Member::Kind::Number, s.line, "aux").number;
      }
      if (s.flag.kind != Member::Kind::Absent) {
        stratum.dc.bAux = Require(s.flag, Member::Kind::Boolean, s.line, "flag").boolean;
      }
      if (stratum.dc.strName.empty()) {
        m_hole.strataWarnings.emplace_back(stratum.where,
                                           "empty code: the stratum gets an empty code");
      }
      for (const auto& warning : s.warnings) {
        m_hole.strataWarnings.push_back(warning);
      }
      m_hole.strataRead.push_back(std::move(stratum));
    } catch (const ParseError& error) {
      m_hole.strataError = error;
    }
  }

  void FinishHole() {
    if (m_error) {
      return;
    }
    const PendingHole& h = m_hole;
    try {
      HoleRecord hole;
      const Member& name = Require(h.name, Member::Kind::String, h.line, "name");
      if (name.text.empty()) {
        throw ParseError(Ref(name.line, "name"), "empty: a borehole needs a name");
      }
      hole.name = name.text;
      hole.where = Ref(h.line, "name");
      hole.x = Require(h.x, Member::Kind::Number, h.line, "x").number;
      hole.y = Require(h.y, Member::Kind::Number, h.line, "y").number;
      hole.top = Require(h.top, Member::Kind::Number, h.line, "top").number;
      if (h.strata.kind == Member::Kind::Absent) {
        throw ParseError(Ref(h.line, "strata"), "missing");
      }
      if (h.strata.kind != Member::Kind::Array) {
        throw ParseError(Ref(h.strata.line, "strata"),
                         std::string("expected an array of strata, found ") +
                             TypeName(h.strata.kind));
      }
      if (h.strataError) {
        throw *h.strataError;
      }
      hole.strata = std::move(m_hole.strataRead);
      for (const auto* list : {&h.warnings, &h.strataWarnings}) {
        for (const auto& [where, message] : *list) {
          m_holeWarnings.push_back(MakeWarning(where, message, hole.name));
        }
      }
      m_holes.push_back(std::move(hole));
    } catch (const ParseError& error) {
      m_error = error;
    }
  }

  std::string m_file;
  const LineIndex& m_lines;
  const std::size_t& m_consumed;
  std::vector<Frame> m_frames;
  PendingHole m_hole;
  PendingStratum m_stratum;
  bool m_sawBoreholes = false;
  std::vector<HoleRecord> m_holes;
  std::vector<Diagnostic> m_rootWarnings; // reported before those of the holes
  std::vector<Diagnostic> m_holeWarnings;
  std::optional<ParseError> m_error;
};

} // namespace

BoreholeSet ReadJsonBoreholes(std::string_view raw, const std::string& file,
                              const ReadOptions& /*options*/) {
  const auto text = StripUtf8Bom(raw);
  RequireUtf8Text(text, file);
  const LineIndex lines(text);
  std::size_t consumed = 0;
  BoreholeHandler handler(file, lines, consumed);
  const CountingIterator first(text.data(), text.data(), &consumed);
  const CountingIterator last(text.data() + text.size(), text.data(), &consumed);
  Json::sax_parse(first, last, &handler);
  return handler.Take();
}

} // namespace xklink
