#pragma once

#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "browsersweep/cleanable/CleanableDataSize.h"

#include "cli/KeepFile.h"

namespace browsersweep::cli {

/** A value of a document, whose keys stay in the order in which they were added. */
using JSON = nlohmann::ordered_json;

/** The value, or null where it is absent. */
template <typename Value>
JSON orNull(const std::optional<Value>& value) {
    return value ? JSON(*value) : JSON(nullptr);
}

/** A list with an element for each row. */
template <typename Rows, typename ToJSON>
JSON listOf(const Rows& rows, const ToJSON& rowToJSON) {
    JSON list = JSON::array();
    for (const auto& row : rows) {
        list.push_back(rowToJSON(row));
    }
    return list;
}

/** A value, indented; bytes that are no text become replacement characters. */
std::string indentedText(const JSON& value);

/** A document as the program writes it: indented, with nothing in it that acts on a terminal. */
std::string documentText(const JSON& document);

/** A number of items, or of bytes. */
JSON toJSON(const CleanableDataSize::Measurement& measurement);
/** A size. */
JSON toJSON(const CleanableDataSize& size);
/** What the lasting keep list says. */
JSON toJSON(const KeepRules& rules);
/** A size, or null where it is absent. */
JSON toJSON(const std::optional<CleanableDataSize>& size);

}  // namespace browsersweep::cli
