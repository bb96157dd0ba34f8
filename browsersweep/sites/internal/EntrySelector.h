#pragma once

#include <span>
#include <string>

#include "browsersweep/sites/TraceStore.h"
#include "browsersweep/sites/internal/SiteMatcher.h"

namespace browsersweep {

/**
 * Which entries of a store a request means. In some stores there are entries whose site nobody
 * knows: where only some sites are meant they go with what tells no site apart, and else stay.
 */
class EntrySelector {
public:
    EntrySelector(const ForgetRequest& request, bool mayBeUnknown)
        : matcher_(request.sites),
          mayBeUnknown_(mayBeUnknown && request.sites.isOnly()),
          takesMixed_(request.takesMixed) {}

    /** Whether an entry of these hosts is meant; of none, if nobody knows them. */
    bool selects(std::span<const std::string> hosts) {
        if (!mayBeUnknown_ || !hosts.empty()) {
            return matcher_.selectsHosts(hosts);
        }
        hasKeptUnknown_ = hasKeptUnknown_ || !takesMixed_;
        return takesMixed_;
    }

    /** Whether one was asked about that stays because nobody knows whose it is. */
    bool hasKeptUnknown() const noexcept { return hasKeptUnknown_; }

private:
    SiteMatcher matcher_;
    bool mayBeUnknown_;
    bool takesMixed_;
    bool hasKeptUnknown_ = false;
};

}  // namespace browsersweep
