#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "browsersweep/base/Bytes.h"
#include "browsersweep/documents/internal/JsonEditor.h"
#include "browsersweep/sites/TraceKind.h"

namespace browsersweep {

/** A state of Firefox's windows and tabs: what of it belongs to whom, and how that is taken out. */
class SessionDocument {
public:
    /** Whether what belongs to these hosts goes, and so many bytes with it. */
    using Question = std::function<bool(TraceKind kind, std::span<const std::string> hosts,
                                        std::uint64_t byteCount)>;

    /** Throws a `DecodingError` for what is no document in JSON, and for one of many levels. */
    explicit SessionDocument(BytesView json);

    /**
     * Asks about each page of a tab, each page within it, the values that a site stored for the
     * session, its cookies, and every other value that names a host of somebody else. Takes out
     * what goes, tabs without pages and windows without tabs. What is within something that goes
     * is not asked about.
     */
    void prune(const Question& question);

    /** Whether anything was taken out. */
    bool isChanged() const noexcept { return document_.isChanged(); }
    /** The document as it is now. */
    std::string edited() const { return document_.edited(); }

private:
    using Member = JsonEditor::Member;

    /** What becomes of a value. */
    enum class Fate {
        stays,
        losesFace,  ///< stays, but the page is gone that it has its title and picture from
        goes,
    };

    /** Where a value stands. */
    struct Place {
        TraceKind kind = TraceKind::openTabs;
        std::span<const std::string> hosts;  ///< whose it is in any case
        std::string_view holder;             ///< the key of the object or array that it is in
    };

    /** The elements of an array, and what becomes of each. */
    struct List {
        std::vector<Member> elements;
        std::vector<Fate> fates;

        bool isEmptied() const noexcept;
        bool hasAnyLeft() const noexcept;
    };

    Fate fateOf(const Member& member, const Place& place);
    Fate fateOfObject(const Member& object, const Place& place);
    Fate fateOfText(const Member& text, const Place& place) const;
    Fate fateByContents(const std::vector<Member>& members, const Place& within);
    Fate afterMoving(const std::vector<Member>& members, std::string_view key, const List& list);
    void removeOthers(const std::vector<Member>& members, const Place& within, bool isFaceLost);
    List pruned(const Member& array, const Place& place);
    void remove(const std::vector<Member>& members, const std::vector<Fate>& fates);
    bool goes(TraceKind kind, std::span<const std::string> hosts, const Member& about) const;

    JsonEditor document_;
    const Question* question_ = nullptr;
};

/** The hosts that a text names in an address, also in one that is escaped or in base64. */
std::vector<std::string> hostsInSessionText(std::string_view text);

}  // namespace browsersweep
