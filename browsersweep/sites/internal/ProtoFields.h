#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace browsersweep {

/** One field of a message in the format of Protocol Buffers. */
struct ProtoField {
    unsigned number = 0;       ///< which field
    std::uint64_t value = 0;   ///< of a number of any kind, else 0
    std::string_view content;  ///< of a text or a message within; points into what was read

    friend bool operator==(const ProtoField&, const ProtoField&) = default;
};

/** What a message holds. */
struct ProtoMessage {
    std::vector<ProtoField> fields;  ///< in their order, up to what is damaged
    bool isWhole = false;            ///< nothing is damaged
};

/** Reads a message. */
ProtoMessage protoMessage(std::string_view message);

/** Its fields alone. */
std::vector<ProtoField> protoFields(std::string_view message);

}  // namespace browsersweep
