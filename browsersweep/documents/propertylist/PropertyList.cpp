#include "browsersweep/documents/propertylist/PropertyList.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <stdexcept>
#include <utility>
#include <variant>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/documents/internal/UTF16.h"
#include "browsersweep/documents/propertylist/internal/BinaryPropertyList.h"
#include "browsersweep/documents/propertylist/internal/TextPropertyList.h"
#include "browsersweep/documents/propertylist/internal/XMLPropertyList.h"

namespace browsersweep {
namespace {

struct UID {
    std::uint64_t value;
    friend bool operator==(const UID&, const UID&) = default;
};

// Told apart by their bits, so that -0.0 and not-a-number are written back as they were read.
bool sameBits(double a, double b) noexcept {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

template <typename Value>
bool sameValue(const Value& a, const Value& b) noexcept {
    return a == b;
}
bool sameValue(double a, double b) noexcept {
    return sameBits(a, b);
}
bool sameValue(Date a, Date b) noexcept {
    return sameBits(referenceSeconds(a), referenceSeconds(b));
}

void requireUTF8(std::string_view text) {
    if (!isUTF8(text)) {
        throw std::invalid_argument("the text of a property list must be UTF-8");
    }
}

std::size_t depthAround(std::size_t deepest) {
    if (deepest >= PropertyList::maximumDepth) {
        throw std::length_error("a property list is nested too deeply");
    }
    return deepest + 1;
}

}  // namespace

struct PropertyList::Node {
    // Beside its values, where it takes no more room than a text does: files have many small
    // values.
    template <typename Values>
    struct Container {
        Values values;
        std::uint16_t depth;
        friend bool operator==(const Container& a, const Container& b) noexcept {
            return a.values == b.values;
        }
    };
    static_assert(maximumDepth <= std::numeric_limits<std::uint16_t>::max());

    // Integers above 2^63-1 are the only ones held as unsigned: each has one representation.
    using Value = std::variant<bool, std::int64_t, std::uint64_t, double, std::string, Date, Bytes,
                               Container<Array>, Container<Dictionary>, UID>;
    Value value;

    static PropertyList make(Value value) {
        return PropertyList(std::make_shared<const Node>(Node{std::move(value)}));
    }

    template <typename Values>
    static PropertyList make(Values values, std::size_t depth) {
        return make(Container<Values>{std::move(values), static_cast<std::uint16_t>(depth)});
    }

    template <typename Type>
    std::optional<Type> get() const noexcept {
        const Type* found = std::get_if<Type>(&value);
        return found == nullptr ? std::nullopt : std::optional<Type>(*found);
    }

    template <typename Values>
    const Container<Values>* container() const noexcept {
        return std::get_if<Container<Values>>(&value);
    }
};

PropertyList::PropertyList(std::shared_ptr<const Node> node) noexcept : node_(std::move(node)) {}

PropertyList PropertyList::parse(BytesView bytes) {
    if (bytes.empty()) {
        throw DecodingError(DecodingError::Kind::dataCorrupted,
                            "an empty file is no property list");
    }
    if (isBinaryPropertyList(bytes)) {
        return parseBinaryPropertyList(bytes);
    }
    return isXMLPropertyList(bytes) ? parseXMLPropertyList(bytes) : parseTextPropertyList(bytes);
}

PropertyList PropertyList::boolean(bool value) {
    return Node::make(value);
}
PropertyList PropertyList::integer(std::int64_t value) {
    return Node::make(value);
}

PropertyList PropertyList::unsignedInteger(std::uint64_t value) {
    constexpr auto largest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    return value > largest ? Node::make(value) : integer(static_cast<std::int64_t>(value));
}

PropertyList PropertyList::real(double value) {
    return Node::make(value);
}

PropertyList PropertyList::string(std::string value) {
    requireUTF8(value);
    return Node::make(std::move(value));
}

PropertyList PropertyList::date(Date value) {
    return Node::make(value);
}
PropertyList PropertyList::data(Bytes value) {
    return Node::make(std::move(value));
}

PropertyList PropertyList::array(Array values) {
    std::size_t deepest = 0;
    for (const PropertyList& value : values) {
        deepest = std::max(deepest, value.depth());
    }
    return Node::make(std::move(values), depthAround(deepest));
}

PropertyList PropertyList::dictionary(Dictionary entries) {
    std::size_t deepest = 0;
    for (const Entry& entry : entries) {
        requireUTF8(entry.key);
        deepest = std::max(deepest, entry.value.depth());
    }
    return Node::make(std::move(entries), depthAround(deepest));
}

PropertyList PropertyList::uid(std::uint64_t value) {
    return Node::make(UID{value});
}

PropertyList::Kind PropertyList::kind() const noexcept {
    // clang-format off
    static constexpr std::array kinds = {
        Kind::boolean, Kind::integer, Kind::integer, Kind::real, Kind::string,
        Kind::date,    Kind::data,    Kind::array,   Kind::dictionary, Kind::uid,
    };
    // clang-format on
    static_assert(kinds.size() == std::variant_size_v<Node::Value>);
    return kinds.at(node_->value.index());
}

std::size_t PropertyList::depth() const noexcept {
    if (const auto* const array = node_->container<Array>()) {
        return array->depth;
    }
    const auto* const dictionary = node_->container<Dictionary>();
    return dictionary == nullptr ? 0 : dictionary->depth;
}

std::optional<bool> PropertyList::asBoolean() const noexcept {
    return node_->get<bool>();
}

std::optional<std::int64_t> PropertyList::asInteger() const noexcept {
    return node_->get<std::int64_t>();
}

std::optional<std::uint64_t> PropertyList::asUnsignedInteger() const noexcept {
    const std::optional<std::int64_t> small = asInteger();
    if (small && *small >= 0) {
        return static_cast<std::uint64_t>(*small);
    }
    return node_->get<std::uint64_t>();
}

std::optional<double> PropertyList::asReal() const noexcept {
    return node_->get<double>();
}
std::optional<Date> PropertyList::asDate() const noexcept {
    return node_->get<Date>();
}

std::optional<std::uint64_t> PropertyList::asUID() const noexcept {
    const UID* found = std::get_if<UID>(&node_->value);
    return found == nullptr ? std::nullopt : std::optional(found->value);
}

const std::string* PropertyList::asString() const noexcept {
    return std::get_if<std::string>(&node_->value);
}

const Bytes* PropertyList::asData() const noexcept {
    return std::get_if<Bytes>(&node_->value);
}
const PropertyList::Array* PropertyList::asArray() const noexcept {
    const auto* const found = node_->container<Array>();
    return found == nullptr ? nullptr : &found->values;
}

const PropertyList::Dictionary* PropertyList::asDictionary() const noexcept {
    const auto* const found = node_->container<Dictionary>();
    return found == nullptr ? nullptr : &found->values;
}

const PropertyList* PropertyList::find(std::string_view key) const noexcept {
    const Dictionary* entries = asDictionary();
    if (entries == nullptr) {
        return nullptr;
    }
    const auto found = std::find_if(entries->rbegin(), entries->rend(),
                                    [key](const Entry& entry) { return entry.key == key; });
    return found == entries->rend() ? nullptr : &found->value;
}

Bytes PropertyList::binaryData() const {
    return binaryPropertyListData(*this);
}

Bytes PropertyList::dataLike(BytesView other) const {
    return isBinaryPropertyList(other) ? binaryData() : xmlPropertyListData(*this);
}

bool operator==(const PropertyList& a, const PropertyList& b) noexcept {
    const PropertyList::Node::Value& left = a.node_->value;
    const PropertyList::Node::Value& right = b.node_->value;
    if (a.node_ == b.node_ || left.index() != right.index()) {
        return a.node_ == b.node_;
    }
    return std::visit(
        [&right](const auto& value) {
            using Value = std::decay_t<decltype(value)>;
            return sameValue(value, *std::get_if<Value>(&right));
        },
        left);
}

}  // namespace browsersweep
