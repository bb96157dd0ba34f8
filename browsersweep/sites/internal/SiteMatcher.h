#pragma once

#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "browsersweep/sites/SiteSelection.h"
#include "browsersweep/sites/internal/SiteForm.h"

namespace browsersweep {

/** Asks a selection about the texts by which a store names sites, as fast as a store has rows. */
class SiteMatcher {
public:
    explicit SiteMatcher(SiteSelection selection) : selection_(std::move(selection)) {}

    /** Whether what belongs to these hosts is selected; to none of them, if there is none. */
    bool selectsHosts(std::span<const std::string> hosts);

    /** Whether what belongs to whom a text of this form names is selected. */
    bool selects(SiteForm form, std::string_view text) { return selectsHosts(hostsIn(form, text)); }

    /** What is asked. */
    const SiteSelection& selection() const noexcept { return selection_; }

private:
    bool isNamed(const std::string& host);

    SiteSelection selection_;
    std::unordered_map<std::string, bool> named_;
};

}  // namespace browsersweep
