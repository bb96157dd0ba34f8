#pragma once

#include <set>
#include <span>
#include <utility>

#include "browsersweep/Export.h"
#include "browsersweep/sites/Site.h"

namespace browsersweep {

/** Which sites are meant: all, only these, or all but these. */
class BROWSERSWEEP_EXPORT SiteSelection {
public:
    /** Everything, also what belongs to no site. */
    static SiteSelection everything() { return {Rule::everything, {}}; }
    /** What belongs to one of these sites. */
    static SiteSelection only(std::set<Site> sites) { return {Rule::only, std::move(sites)}; }
    /** Everything but what belongs to one of these sites. */
    static SiteSelection allBut(std::set<Site> sites) { return {Rule::allBut, std::move(sites)}; }

    /**
     * Whether something is meant that belongs to these sites: to none, to one, or to two, as the
     * storage of a site that is embedded in another. One site that is meant is enough, and one
     * that is kept keeps it.
     */
    bool selects(std::span<const Site> sites) const noexcept;
    /** The same for what belongs to one site. */
    bool selects(const Site& site) const noexcept { return selects(std::span(&site, 1)); }

    /** Whether nothing is kept. */
    bool isEverything() const noexcept { return rule_ == Rule::everything; }
    /** Whether only what belongs to certain sites is meant. */
    bool isOnly() const noexcept { return rule_ == Rule::only; }
    /** The sites that are named: to be forgotten, or to be kept. */
    const std::set<Site>& sites() const noexcept { return sites_; }

private:
    enum class Rule { everything, only, allBut };

    SiteSelection(Rule rule, std::set<Site> sites) : rule_(rule), sites_(std::move(sites)) {}

    Rule rule_;
    std::set<Site> sites_;
};

}  // namespace browsersweep
