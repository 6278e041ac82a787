#pragma once

#include <string>

namespace zephlin::contract {

/// Expects the text to be that of Golden/<name>.txt without the words that are left out, and shows
/// the lines that differ. With ZEPHLIN_RENEW_GOLDEN set in the environment, a text of which nothing
/// is left out is written to the file instead.
void expectGolden(const std::string& name, const std::string& text,
                  const std::string& leftOut = "");

}  // namespace zephlin::contract
