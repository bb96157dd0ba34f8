#include "browsersweep/sites/TraceStore.h"

namespace browsersweep {

bool ForgetRequest::takes(TraceKind kind) const noexcept {
    if (keptKinds.contains(kind)) {
        return false;
    }
    if (kind == TraceKind::settings) {
        return takesSettings || kinds.contains(kind);
    }
    return kinds.empty() || kinds.contains(kind);
}

bool ForgetRequest::takesMixedOf(TraceKind kind) const noexcept {
    return takes(kind) && (takesMixed || !sites.isOnly());
}

TraceStore::~TraceStore() = default;

std::vector<std::filesystem::path> TraceStore::places() const {
    return {path()};
}

bool TraceStore::needsKnownHosts() const noexcept {
    return false;
}

std::shared_ptr<const TraceStore> TraceStore::remembering() const {
    return nullptr;
}

}  // namespace browsersweep
