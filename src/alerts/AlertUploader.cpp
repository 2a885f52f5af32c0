#include "alerts/AlertUploader.hpp"

#include "cloud/AsyncTimeout.hpp"
#include "cloud/CloudErrors.hpp"
#include "cloud/CloudTimeLimit.hpp"
#include "core/Events.hpp"
#include "ports/CloudError.hpp"
#include "ports/Journal.hpp"

#include <chrono>
#include <cstdint>
#include <utility>

namespace sentrel {

using namespace std::chrono_literals;

namespace {

/// A record not seen this long after its attempt timed out counts as lost.
constexpr Duration longestWay = 60s;

} // namespace

AlertUploader::AlertUploader(MainActor actor, CloudKitService& cloud, ports::Journal& journal)
    : actor_(actor), cloud_(cloud), journal_(journal)
{
}

AlertUploader::~AlertUploader()
{
    for (const auto& [id, task] : attempts_) {
        task.abandon();
    }
}

Async<AlertUploader::Outcome> AlertUploader::upload(AlertEvent alert, std::optional<Bytes> photo)
{
    if (discarded_.contains(alert.id)) {
        co_return Outcome::deleted;
    }
    const auto [place, isNew] = attempts_.try_emplace(alert.id);
    if (isNew) {
        // Has its own task: a cancelled wait for the outcome doesn't end the attempt.
        place->second = actor_.spawn(attempt(std::move(alert), std::move(photo)));
    }
    const Task<Outcome> task = place->second;
    const Outcome outcome = co_await task;
    co_return outcome;
}

Async<AlertUploader::Outcome> AlertUploader::attempt(AlertEvent alert, std::optional<Bytes> photo)
{
    const UUID id = alert.id;
    Outcome outcome = Outcome::failed;
    try {
        outcome = co_await attemptOnce(std::move(alert), std::move(photo));
    } catch (...) {
        // Raised: the next attempt must not find this one under way for ever.
    }
    attempts_.erase(id);
    co_return outcome;
}

Async<AlertUploader::Outcome> AlertUploader::attemptOnce(AlertEvent alert, std::optional<Bytes> photo)
{
    const UUID id = alert.id;
    Outcome outcome = Outcome::uploaded;
    try {
        co_await AsyncTimeout::run(actor_, cloudTimeLimit, cloud_.uploadAlert(std::move(alert), std::move(photo)));
    } catch (const CancellationError&) {
        outcome = Outcome::failed; // the request was cancelled, which is no error
    } catch (const AsyncTimeout::TimedOut&) {
        outcome = Outcome::timedOut;
    } catch (const std::exception& error) {
        outcome = noteFailure(id, error);
    }
    if (outcome == Outcome::timedOut) {
        // The catalog may have taken too long, after the server had confirmed the alert.
        const bool isConfirmed = co_await cloud_.isUploadConfirmed(id);
        outcome = isConfirmed ? Outcome::uploaded : noteFailure(id, AsyncTimeout::TimedOut{});
    }
    if (outcome == Outcome::uploaded) {
        journal_.note(events::AlertUploaded{id.text()});
    }
    co_return outcome;
}

AlertUploader::Outcome AlertUploader::noteFailure(const UUID& id, const std::exception& error)
{
    cloud_.recordSyncFailure(error);
    const ports::CloudError* const cloudError = cloudKitErrorOf(error);
    const std::int64_t code = cloudError != nullptr ? cloudError->code : 0;
    journal_.note(events::AlertUploadFailed{id.text(), code, cloud_.userFacingMessage(error)});
    if (isCloudKitError(error, CloudErrorCode::quotaExceeded)) {
        return Outcome::storageFull;
    }
    if (dynamic_cast<const AsyncTimeout::TimedOut*>(&error) != nullptr) {
        const Instant now = actor_.scheduler().now();
        std::erase_if(givenUp_, [now](const auto& entry) { return now - entry.second >= longestWay; });
        givenUp_.insert_or_assign(id, now);
        return Outcome::timedOut;
    }
    return isNetworkError(error) ? Outcome::unreachable : Outcome::failed;
}

bool AlertUploader::mayArriveLate(const UUID& id) const
{
    const auto found = givenUp_.find(id);
    return found != givenUp_.end() && actor_.scheduler().now() - found->second < longestWay;
}

void AlertUploader::discard(const std::unordered_set<UUID>& ids)
{
    discarded_.insert(ids.begin(), ids.end());
}

} // namespace sentrel
