#include "simulation/storm/Invariants.hpp"

#include <algorithm>
#include <array>

namespace sentrel::simulation {

namespace {

bool isAnywhere(const UUID& id, const Sight& now)
{
    const auto holds = [&](const auto& account) { return account.second.contains(id); };
    return now.onDisk.contains(id) || now.listed.contains(id) || std::ranges::any_of(now.inCloud, holds);
}

/// Whether the process held an alert that the disk refused, and has ended.
bool hasEndedWith(const KnownAlert& alert, const Chronicle& past)
{
    return past.hadTrouble({"files", "host"}, alert.firstSeen - settling) && past.endedAt > alert.firstSeen;
}

/// An alert that was seen once is on the disk, in memory or in the cloud until it is deleted.
Finding alertsSurvive(const Instants& is)
{
    for (const auto& [id, alert] : is.past.alerts) {
        if (alert.deletedAt <= is.now.at || alert.mayBeGone || isAnywhere(id, is.now)) {
            continue;
        }
        if (!hasEndedWith(alert, is.past)) {
            return "the alert " + id.text() + " (" + alert.reason + ") is lost";
        }
    }
    return std::nullopt;
}

/// A trigger that the product can't have missed leaves an alert.
Finding triggersLeaveAlerts(const Instants& is)
{
    for (const Cause& cause : is.past.causes) {
        if (cause.isCertain && !cause.hasAlert && !is.past.hasHung && is.now.at - cause.at > longestWay) {
            return "no alert came of " + cause.reason + " at " + std::to_string(cause.at) + " s";
        }
    }
    return std::nullopt;
}

/// A trigger makes one alert, and nothing else makes one.
Finding alertsHaveCauses(const Instants& is)
{
    for (const auto& [id, alert] : is.past.alerts) {
        const bool isNew = alert.firstSeen == is.now.at;
        if (isNew && !alert.hasCause &&
            !is.past.hadTrouble({"power-sources", "lid", "workspace", "accelerometer"}, is.now.at - longestWay)) {
            return "the alert " + id.text() + " (" + alert.reason + ") has no trigger of its own";
        }
    }
    return std::nullopt;
}

/// A deleted alert never comes back.
Finding deletedStaysGone(const Instants& is)
{
    for (const auto& [id, alert] : is.past.alerts) {
        if (alert.deletedAt >= is.now.at) {
            continue;
        }
        const bool isListed = is.now.listed.contains(id);
        const auto cloud = is.now.inCloud.find(alert.owner);
        const bool isOwners = alert.owner == is.now.user && cloud != is.now.inCloud.end();
        const bool isStored = isOwners && is.now.at - is.past.calmSince > calm && cloud->second.contains(id) &&
                              is.past.calmSince > alert.deletedAt;
        if ((isListed || isStored) && !is.past.hadTrouble({"user-defaults", "files"}, alert.deletedAt - settling)) {
            return "the deleted alert " + id.text() + (isListed ? " is listed again" : " is still in the cloud");
        }
    }
    return std::nullopt;
}

/// Whether the Mac has had the time to learn who is signed in. At most requests to the database have failed meanwhile;
/// a check of the user that fails is repeated at growing intervals.
bool knowsUser(const Instants& is)
{
    constexpr double longestCheck = 20.0;
    constexpr double longestCheckAgain = 600.0;
    if (is.past.hasHung || is.past.steadySince == never) {
        return false;
    }
    const double since = std::max(is.past.userChangedAt, is.past.steadySince);
    const bool isUndisturbed = is.past.userHiddenAt < since && is.now.at - since > longestCheck;
    return isUndisturbed || (is.past.calmSince != never &&
                             is.now.at - std::max(is.past.calmSince, is.past.userChangedAt) > longestCheckAgain);
}

/// Nothing from one user's database is shown to another, or stored for one. An alert whose upload arrived without its
/// answer is still on the Mac: it also goes to the next user's database, and is theirs from then on.
Finding othersStayOthers(const Instants& is)
{
    const auto mine = is.now.inCloud.find(is.now.user);
    const auto isMine = [&](const UUID& id) { return mine != is.now.inCloud.end() && mine->second.contains(id); };
    const bool isKnown = knowsUser(is);
    for (const auto& [id, row] : is.now.listed) {
        if (!isKnown || row.storage != AlertStorageLocation::cloud) {
            continue;
        }
        const auto alert = is.past.alerts.find(id);
        const bool isOthers =
            alert != is.past.alerts.end() && !alert->second.owner.empty() && alert->second.owner != is.now.user;
        if (isOthers && !isMine(id)) {
            return "the alert " + id.text() + " of " + alert->second.owner + " is shown to " + is.now.user;
        }
    }
    const auto earlier = is.before.inCloud.find(is.now.user);
    const bool knewUser = earlier != is.before.inCloud.end();
    if (mine == is.now.inCloud.end() || (knewUser && earlier->second == mine->second)) {
        return std::nullopt;
    }
    for (const UUID& id : mine->second) {
        const auto alert = is.past.alerts.find(id);
        const bool isNew = !knewUser || !earlier->second.contains(id);
        const bool isOthers = alert != is.past.alerts.end() && alert->second.owner != is.now.user;
        if (isNew && isOthers && !is.before.onDisk.contains(id) && !is.before.listed.contains(id)) {
            return "the alert " + id.text() + " of " + alert->second.owner + " is stored for " + is.now.user;
        }
    }
    return std::nullopt;
}

/// Once the faults have ceased, everything that waits reaches the cloud.
Finding nothingWaitsInCalm(const Instants& is)
{
    if (is.past.calmSince == never || is.now.at - is.past.calmSince < calm ||
        is.now.at - is.past.lastCauseAt() < calm || is.now.at - is.past.clockJumpedAt < calm) {
        return std::nullopt;
    }
    if (is.past.hadTrouble({"host"}, is.past.launchedAt)) {
        return std::nullopt; // this process keeps its alerts in a temporary folder, and does not see the others
    }
    // A copy that could not be removed after its upload stays until the next launch.
    const auto mine = is.now.inCloud.find(is.now.user);
    const auto isWaiting = [&](const auto& alert) {
        return mine == is.now.inCloud.end() || !mine->second.contains(alert.first);
    };
    if (const auto waiting = std::ranges::count_if(is.now.onDisk, isWaiting); waiting > 0) {
        return std::to_string(waiting) + " alerts still wait for their upload";
    }
    if (is.now.owedDeletions > 0 && is.now.at - is.past.owedSince > calm && is.past.userChangedAt == never) {
        return std::to_string(is.now.owedDeletions) + " deletions are still owed";
    }
    for (const auto& [id, row] : is.now.listed) {
        if (row.storage != AlertStorageLocation::cloud) {
            return "the list shows the alert " + id.text() + " as waiting";
        }
    }
    return std::nullopt;
}

/// In calm the list shows all that the user's database holds. An alert that was sent before its process ended, and is
/// nowhere else, is not in the catalog.
Finding theListIsWhole(const Instants& is)
{
    const auto mine = is.now.inCloud.find(is.now.user);
    if (mine == is.now.inCloud.end() || !is.past.isCalmFor(calm) || !is.now.isRunning) {
        return std::nullopt;
    }
    for (const UUID& id : mine->second) {
        const auto alert = is.past.alerts.find(id);
        const bool isExcused = alert != is.past.alerts.end() &&
                               (alert->second.deletedAt <= is.now.at || hasEndedWith(alert->second, is.past));
        if (!isExcused && !is.now.listed.contains(id)) {
            return "the list doesn't show the alert " + id.text() + ", which is in the cloud";
        }
    }
    return std::nullopt;
}

constexpr std::array<Invariant, 7> ofAlerts{{
    {"alerts survive", alertsSurvive, onChange},
    {"triggers leave alerts", triggersLeaveAlerts},
    {"alerts have causes", alertsHaveCauses, onChange},
    {"deleted stays gone", deletedStaysGone, onChange},
    {"others stay others", othersStayOthers, onChange},
    {"nothing waits in calm", nothingWaitsInCalm, onChange},
    {"the list is whole", theListIsWhole, onChange},
}};

} // namespace

std::span<const Invariant> alertInvariants()
{
    return ofAlerts;
}

} // namespace sentrel::simulation
