#include "browsersweep/profiles/safari/SafariNamedProfile.h"

#include "browsersweep/profiles/safari/internal/SafariIdentifier.h"

namespace browsersweep {

std::optional<std::string> SafariNamedProfile::leftOutReason() const {
    return isSafariIdentifier(identifier_)
               ? std::nullopt
               : std::optional<std::string>("its identifier is not of the form of a UUID");
}

std::optional<ProfileFolders> SafariNamedProfile::folders() const {
    if (!isSafariIdentifier(identifier_)) {
        return std::nullopt;
    }
    const auto library = home_.directoryProvider()->libraryDirectory();
    return ProfileFolders{safariProfileFolders(library) / inCapitals(identifier_),
                          safariWebsiteFolders(library) / inSmallLetters(identifier_)};
}

CleanableDataMap SafariNamedProfile::cleanableData() const {
    return CleanableDataMap(CleanableDataMap::Lists());
}

}  // namespace browsersweep
