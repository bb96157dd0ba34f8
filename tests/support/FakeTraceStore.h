#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "browsersweep/sites/ListingParts.h"
#include "browsersweep/sites/TraceStore.h"

namespace browsersweep::tests {

/** What was done with stores, in order: "list NAME" and "forget NAME". */
using StoreRecord = std::shared_ptr<std::vector<std::string>>;

/** A trace of one item of ten bytes. */
inline Trace traceOf(const std::string& host, TraceKind kind = TraceKind::history,
                     CleanableDataSize size = {1, 10}) {
    return {*Site::ofHost(host), kind, {host}, size, {}};
}

/** A store that holds what it is given, and forgets what is asked for, unless it is told other. */
class FakeTraceStore : public TraceStore {
public:
    FakeTraceStore(std::string name, TraceListing held, StoreRecord record)
        : listing(std::move(held)), name_(std::move(name)), record_(std::move(record)) {}

    std::filesystem::path path() const override { return name_; }
    std::set<TraceKind> kinds() const override { return ofKinds; }
    bool needsKnownHosts() const noexcept override { return isOfHashes; }

    TraceListing list(const KnownHosts& knownHosts) const override {
        record_->push_back("list " + name_);
        given = knownHosts;
        onList();
        return listing;
    }

    ForgetOutcome forget(const ForgetRequest& request) const override {
        record_->push_back("forget " + name_);
        given = request.knownHosts;
        if (doesForget) {
            listing = goneBetween(listing, selectedPart(listing, request));
        }
        onForget();
        return outcome;
    }

    std::shared_ptr<const TraceStore> remembering() const override { return forOneOperation; }

    mutable TraceListing listing;
    mutable KnownHosts given;  ///< with the last call
    std::set<TraceKind> ofKinds{TraceKind::history};
    std::shared_ptr<const TraceStore> forOneOperation;  ///< what remembers in its place
    bool isOfHashes = false;
    bool doesForget = true;
    ForgetOutcome outcome;
    std::function<void()> onList = [] {};
    std::function<void()> onForget = [] {};  ///< after it forgot

private:
    std::string name_;
    StoreRecord record_;
};

}  // namespace browsersweep::tests
