#include "KeyboardService/Protocol/LineSplitter.h"

namespace zephlin {

LineSplitter::State LineSplitter::state() const {
  const std::string_view head = std::string_view(buffer_).substr(0, maximumLineBytes_ + 1);
  if (head.find('\n') != std::string_view::npos) {
    return State::HasLine;
  }
  return head.size() > maximumLineBytes_ ? State::LineTooLong : State::NeedsBytes;
}

std::string LineSplitter::takeLine() {
  const auto end = buffer_.find('\n');
  std::string line = buffer_.substr(0, end);
  buffer_.erase(0, end + 1);
  return line;
}

}  // namespace zephlin
