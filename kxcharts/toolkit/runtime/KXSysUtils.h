#pragma once
// The exception family. Messages are the system's own texts; nothing is logged.

#include <exception>
#include <string>
#include <utility>

namespace kx {

class Exception : public std::exception {
public:
  explicit Exception(std::string Message) : FMessage(std::move(Message)) {}
  const std::string& Message() const noexcept { return FMessage; }
  const char* what() const noexcept override { return FMessage.c_str(); }

private:
  std::string FMessage;
};

// An impossible conversion or assignment ("Cannot assign a X to a Y").
class EConvertError : public Exception {
public:
  using Exception::Exception;
};

// Arithmetic that has no defined integer result (Round of NaN, out of range).
class EInvalidOp : public Exception {
public:
  using Exception::Exception;
};

// An index outside a list or collection.
class EListError : public Exception {
public:
  using Exception::Exception;
};

// Runs Fn when the scope ends, also when an exception passes: the "finally" of clean-up
// that must not be skipped (restoring a state, a flag, an event). Fn must not raise.
template <class F> class TFinally {
public:
  explicit TFinally(F Fn) : FFn(std::move(Fn)) {}
  TFinally(const TFinally&) = delete;
  TFinally& operator=(const TFinally&) = delete;
  ~TFinally() { FFn(); }

private:
  F FFn;
};

} // namespace kx
