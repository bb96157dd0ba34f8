#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "cli/JSONValues.h"

namespace browsersweep::cli {

/**
 * The text of an object as `documentText` writes it, of which each piece is written before the next
 * one is made: the values of thousands of rows take four times as much memory as their text.
 */
class DocumentText {
public:
    /** Writes a member. */
    void add(std::string_view name, const JSON& value);

    /** Writes a list of rows, one after the other. */
    template <typename Rows, typename ToJSON>
    void addList(std::string_view name, const Rows& rows, const ToJSON& rowToJSON) {
        beginMember(name);
        text_ += '[';
        std::string_view separator;
        for (const auto& row : rows) {
            text_.append(separator).append("\n    ");
            addValue(rowToJSON(row), 4);
            separator = ",";
        }
        text_ += separator.empty() ? "]" : "\n  ]";
    }

    /** The whole document; nothing is left of it here. */
    std::string finish() &&;

private:
    void beginMember(std::string_view name);
    void addValue(const JSON& value, std::size_t indentation);

    std::string text_{'{'};
};

}  // namespace browsersweep::cli
