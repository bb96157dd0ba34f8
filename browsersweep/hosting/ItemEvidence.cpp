#include "browsersweep/hosting/ItemEvidence.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "browsersweep/hosting/FailureKind.h"

namespace browsersweep {
namespace {

struct Failure {
    FailureKind kind = FailureKind::other;
    std::string text;
};

Failure failureOf(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& known) {
        const FailureKind kind = failureKind(known);
        std::string text(displayName(kind));
        const std::string_view message = known.what();
        text += text.empty() || message.empty() ? "" : ": ";
        return {kind, text.append(message)};
    } catch (...) {  // an item may be anybody's, and so may be its errors
        return {FailureKind::other, "an error without a message"};
    }
}

ItemVerdict verdictOf(FailureKind kind, const ItemEvidence& evidence) noexcept {
    switch (kind) {
        case FailureKind::notUnderstood:
            return ItemVerdict::notUnderstood;
        case FailureKind::cancelled:
            return ItemVerdict::cancelled;
        case FailureKind::locked:
            if (evidence.isHeld) {
                return ItemVerdict::held;
            }
            break;
        case FailureKind::nothingThere:
        case FailureKind::noPermission:
        case FailureKind::other:
            break;
    }
    return evidence.isDeletion ? ItemVerdict::couldNotDelete : ItemVerdict::couldNotLook;
}

ItemJudgement judgeFailure(const std::exception_ptr& error, const ItemEvidence& evidence) {
    Failure failure = failureOf(error);
    ItemJudgement judgement{verdictOf(failure.kind, evidence), {}, std::move(failure.text)};
    const bool isPartlyGone = evidence.isDeletion && evidence.after && evidence.before &&
                              evidence.left() < evidence.before->itemCount.value;
    if (isPartlyGone && judgement.verdict != ItemVerdict::cancelled) {
        judgement.verdict = ItemVerdict::partlyEmptied;
    }
    return judgement;
}

ItemJudgement judgementOf(const ItemObstacle& obstacle) {
    return {obstacle.verdict, obstacle.path, obstacle.detail};
}

/** A verdict that is good, unless something was not seen or an error was ignored. */
ItemJudgement unlessIncomplete(ItemVerdict verdict, const ItemEvidence& evidence) {
    if (evidence.ignored) {
        return judgeFailure(evidence.ignored, evidence);
    }
    // What is denied weighs more than a link, which may be meant to be one.
    const auto found = std::max_element(evidence.leftOut.begin(), evidence.leftOut.end(),
                                        [](const LeftOutFolder& one, const LeftOutFolder& other) {
                                            return !one.isDenied && other.isDenied;
                                        });
    if (found == evidence.leftOut.end()) {
        return {verdict, {}, {}};
    }
    return {found->isDenied ? ItemVerdict::couldNotLook : ItemVerdict::leftOut, found->folder,
            found->isDenied ? "no permission: " + found->why : found->why};
}

ItemJudgement judgeLeftovers(const ItemEvidence& evidence) {
    if (evidence.isHeld) {
        return {ItemVerdict::held, {}, "rows are left; the browser seems to hold the database"};
    }
    const std::int64_t before = evidence.selected();
    const std::int64_t left = evidence.left();
    if (!evidence.leftOut.empty() && left >= before) {
        return unlessIncomplete(ItemVerdict::couldNotDelete, evidence);  // it was not entered
    }
    std::string detail =
        std::to_string(left) + " of " + std::to_string(std::max(before, left)) + " are still there";
    if (evidence.ignored) {
        detail += "; " + failureOf(evidence.ignored).text;
    } else if (evidence.lookAfter.toDeleting) {
        detail += "; " + evidence.lookAfter.toDeleting->detail;
    }
    return {left < before ? ItemVerdict::partlyEmptied : ItemVerdict::couldNotDelete,
            {},
            std::move(detail)};
}

}  // namespace

std::int64_t ItemEvidence::left() const noexcept {
    return lookAfter.rows.value_or(after ? after->itemCount.value : 0);
}

std::int64_t ItemEvidence::selected() const noexcept {
    if (before) {
        return lookBefore.rows.value_or(before->itemCount.value);
    }
    return (deleted ? deleted->itemCount.value : 0) + left();
}

ItemJudgement judgeMeasured(const ItemEvidence& evidence) {
    if (evidence.error) {
        return judgeFailure(evidence.error, evidence);
    }
    const std::int64_t count = evidence.before->itemCount.value;
    const auto& obstacle = evidence.lookBefore.toSeeing;
    // What a browser holds is counted on a copy: a number is one, but nothing may be anything.
    if (obstacle && (obstacle->verdict != ItemVerdict::held || count == 0)) {
        return judgementOf(*obstacle);
    }
    const bool isEmpty = count == 0 && evidence.lookBefore.rows.value_or(0) == 0;
    return unlessIncomplete(isEmpty ? ItemVerdict::nothingThere : ItemVerdict::measured, evidence);
}

ItemJudgement judgeCleaned(const ItemEvidence& evidence) {
    if (evidence.error) {
        return judgeFailure(evidence.error, evidence);
    }
    if (evidence.lookAfter.toSeeing) {
        return judgementOf(*evidence.lookAfter.toSeeing);
    }
    if (evidence.left() > 0) {
        return judgeLeftovers(evidence);
    }
    if (evidence.lookBefore.toSeeing) {
        auto judgement = judgementOf(*evidence.lookBefore.toSeeing);
        judgement.detail += "; it is empty now, but what went could not be counted";
        return judgement;
    }
    const bool wasEmpty =
        evidence.selected() == 0 && (!evidence.before || evidence.before->itemCount.value == 0);
    return unlessIncomplete(wasEmpty ? ItemVerdict::nothingThere : ItemVerdict::emptied, evidence);
}

}  // namespace browsersweep
