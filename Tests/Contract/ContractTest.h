#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "Tests/Contract/ContractDesktop.h"

namespace zephlin::contract {

class ContractTest : public testing::Test {
 protected:
  Platform& platform() { return desktop_->platform(); }
  Dispatch& dispatch() { return platform().dispatch(); }
  std::shared_ptr<MainQueue> mainQueue() { return dispatch().mainQueue(); }
  ContractDesktop& desktop() { return *desktop_; }
  bool runUntil(const std::function<bool()>& condition) { return desktop_->runUntil(condition); }

  /// Handles all that was posted so far, and what takes a little longer to arrive.
  void settle() { desktop_->runFor(0.1); }

 private:
  std::unique_ptr<ContractDesktop> desktop_ = makeContractDesktop();
};

using Words = std::vector<std::string>;

}  // namespace zephlin::contract
