#pragma once

#include <string>

#include "KeyboardService/Protocol/Errors.h"

namespace zephlin {

/// The text of the RequestError that the action throws; "no error" if it throws none.
template <typename Action>
std::string requestErrorOf(const Action& action) {
  try {
    action();
  } catch (const RequestError& error) {
    return error.what();
  }
  return "no error";
}

}  // namespace zephlin
