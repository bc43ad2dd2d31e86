// The tool's errors. Every one of them ends the run with exit status 2 and a message on standard
// error; none leaves a partial output file behind.
#pragma once

#include <stdexcept>
#include <string>

namespace xklink {

// Bad usage: an unknown hole name, fewer than two holes, conflicting options.
class UsageError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

// The input was read but cannot be used: its message lists every error, one per line, each with
// file, line and field.
class InputError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

// An output file could not be written.
class OutputError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

// `check` found problems and has listed them: exit status 2 without a further message.
class CheckFailed : public std::exception {};

} // namespace xklink
