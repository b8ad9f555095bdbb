// Formatting for the libraries with a C interface.
#include "platform/host/c_boundary.h"

#include <cstdio>
#include <stdexcept>

namespace host {

std::string FormatText(const char* format, va_list arguments) {
  va_list measured;
  va_copy(measured, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, measured);
  va_end(measured);
  if (length < 0) throw std::runtime_error("the message cannot be formatted");
  std::string text(static_cast<size_t>(length) + 1, '\0');
  std::vsnprintf(text.data(), text.size(), format, arguments);
  text.pop_back();
  return text;
}

}  // namespace host
