#include "KeyboardService/Client/Listing.h"

#include <algorithm>
#include <vector>

#include "KeyboardService/Protocol/Errors.h"

namespace zephlin {
namespace {

using Row = std::vector<std::string>;

constexpr std::size_t gapBetweenColumns = 3;

Row propertyRow(RegistryID registryID, std::string_view key, std::optional<std::int64_t> value) {
  return {toText(registryID), std::string(key), value ? std::to_string(*value) : "(null)"};
}

Row propertyHeader() {
  return {"RegistryID", "Key", "Value"};
}

}  // namespace

std::string table(const std::vector<Row>& rows) {
  std::vector<std::size_t> widths(rows.front().size());
  for (const Row& row : rows) {
    for (std::size_t column = 0; column < row.size(); ++column) {
      widths[column] = std::max(widths[column], row[column].size());
    }
  }
  std::string text;
  for (const Row& row : rows) {
    for (std::size_t column = 0; column + 1 < row.size(); ++column) {
      text += row[column];
      text.append(widths[column] - row[column].size() + gapBetweenColumns, ' ');
    }
    text += row.back() + '\n';
  }
  return text;
}

std::string listing(const ListRequest& /*request*/, const ListResponse& response) {
  std::vector<Row> rows{{"RegistryID", "VendorID", "ProductID", "UsagePage", "Usage", "Transport",
                         "State", "Product"}};
  for (const Keyboard& each : response.keyboards) {
    const KeyboardDescription& description = each.description;
    rows.push_back(
        {toText(each.registryID), std::to_string(description.vendorID),
         std::to_string(description.productID), std::to_string(description.primaryUsagePage),
         std::to_string(description.primaryUsage), printable(description.transport),
         each.state.empty() ? "-" : printable(each.state), printable(description.product)});
  }
  return table(rows);
}

std::string listing(const GetRequest& request, const GetResponse& response) {
  std::vector<Row> rows{propertyHeader()};
  for (const KeyboardValue& each : response.values) {
    rows.push_back(propertyRow(each.registryID, request.key, each.value));
  }
  return table(rows);
}

std::string listing(const SetRequest& request, const SetResponse& response) {
  if (hasFailed(response)) {
    return {};
  }
  std::vector<Row> rows{propertyHeader()};
  for (const RegistryID each : response.keyboards) {
    for (const auto& [key, value] : request.properties) {
      rows.push_back(propertyRow(each, key, value));
    }
  }
  return table(rows);
}

std::string listing(const PlugRequest& /*request*/, const PlugResponse& response) {
  return toText(response.registryID) + '\n';
}

std::string listing(const PullRequest& /*request*/, const PullResponse& /*response*/) {
  return {};
}

std::vector<std::string> complaints(const SetResponse& response) {
  std::vector<std::string> lines;
  for (const UnsetKeyboard& each : response.unset) {
    lines.push_back("keyboard " + toText(each.registryID) +
                    " is not set: " + printable(each.reason));
  }
  return lines;
}

bool hasFailed(const SetResponse& response) {
  return response.keyboards.empty() && !response.unset.empty();
}

}  // namespace zephlin
