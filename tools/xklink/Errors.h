// The tool's errors. All are ParseErrors, so that each carries the file, line and field to blame
// (the file alone, or nothing, when no line or field is), and main maps the whole family to exit
// status 2 with the message on standard error. None leaves a partial output file behind.
#pragma once

#include "Diagnostics.h"

#include <exception>
#include <filesystem>
#include <string>

namespace xklink {

// Bad usage: an unknown hole name, fewer than two holes, conflicting options, an output that is
// one of the inputs.
class UsageError : public ParseError {
public:
  explicit UsageError(const std::string& message) : ParseError({}, message) {}
};

// The input was read but cannot be used. Either one problem with its place, or the list of every
// error, one per line, each with its own file, line and field.
class InputError : public ParseError {
public:
  explicit InputError(const std::string& message) : ParseError({}, message) {}
  InputError(SourceRef where, const std::string& message) : ParseError(std::move(where), message) {}
};

// An output could not be written: the file (or "standard output") and why.
class OutputError : public ParseError {
public:
  explicit OutputError(const std::string& message) : ParseError({}, message) {}
  OutputError(const std::filesystem::path& file, const std::string& message)
      : ParseError({file.string(), 0, {}}, message) {}
};

// `check` found problems and has listed them: exit status 2 without a further message.
class CheckFailed : public std::exception {};

} // namespace xklink
