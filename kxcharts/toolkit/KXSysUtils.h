#pragma once
// The exception family. Messages are the system's own texts; nothing is logged.

#include <exception>
#include <string>

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

} // namespace kx
