#include "app/MacAppDelegate.hpp"

#include "alerts/MacAlertsService.hpp"
#include "app/AlertPhotoPreview.hpp"
#include "app/ProtectedActions.hpp"
#include "app/WindowHooks.hpp"
#include "cloud/AsyncTimeout.hpp"
#include "cloud/CloudKitConnectionMonitor.hpp"
#include "cloud/CloudSubscriptions.hpp"
#include "cloud/MacPresenceService.hpp"
#include "coordinator/AlarmCoordinator.hpp"
#include "core/Events.hpp"
#include "core/SettingsStore.hpp"
#include "foundation/Quietly.hpp"
#include "lock/PasswordGate.hpp"
#include "lock/ScreenCoverService.hpp"
#include "outputs/AlarmSoundPlayer.hpp"
#include "ports/Journal.hpp"
#include "ports/Language.hpp"
#include "ports/PreviewPanel.hpp"
#include "ports/RemoteNotifications.hpp"
#include "ports/WindowConstants.hpp"
#include "ports/WorkspaceNotifications.hpp"
#include "runtime/CurrentTask.hpp"
#include "runtime/WeakCall.hpp"

#include <utility>

namespace sentrel {

namespace {

using namespace std::chrono_literals;

constexpr Duration lastPublicationLimit = 2s;

bool isUnderWay(const Task<void>& task)
{
    return task && !task.isFinished();
}

} // namespace

MacAppDelegate::MacAppDelegate(MainActor actor, bool isCompatibleComputer, Services services, Ports ports)
    : actor_(actor), isCompatibleComputer_(isCompatibleComputer), with_(services), ports_(ports)
{
}

void MacAppDelegate::applicationDidFinishLaunching()
{
    // Each by itself: a call that raises must not keep the rest from its work.
    quietly([this] { ports_.application.setActivationPolicy(ports::accessoryActivationPolicy); });
    quietly([this] { with_.soundPlayer.restoreLeftoverState(); });
    leaveDisarmed();
    quietly([this] { with_.presence.start(); });
    quietly([this] { with_.connectionMonitor.start(); });
    insistently([this] { registerForRemoteNotifications(); });
    quietly([this] { controlPreviewPanel(); });
    insistently([this] {
        wakeRegistration_ = ports_.workspaceNotifications.observe(
            ports::workspaceDidWake, weakCall(actor_, anchor_.weak(), &MacAppDelegate::systemDidWake));
    });
    if (!isCompatibleComputer_) {
        tasks_.add(actor_.spawn(bringUpControlPanel()));
    }
}

ports::TerminateReply MacAppDelegate::applicationShouldTerminate()
{
    if (!mayQuit()) {
        start(authorization_, authorizeQuit());
        return ports::TerminateReply::cancel;
    }
    if (quitCleanupDone_) {
        return ports::TerminateReply::now;
    }
    start(cleanup_, cleanUpAndQuit());
    return ports::TerminateReply::later;
}

void MacAppDelegate::applicationWillTerminate()
{
    leaveDisarmed();
    with_.soundPlayer.stopAndWait();
}

MacAppDelegate::QuitState MacAppDelegate::quitState() const
{
    if (quitCleanupDone_) {
        return QuitState::terminating;
    }
    if (isUnderWay(cleanup_)) {
        return QuitState::cleaningUp;
    }
    return isUnderWay(authorization_) ? QuitState::authorizing : QuitState::running;
}

bool MacAppDelegate::mayQuit() const
{
    // Independent of the settings: quitting must not silence an alarm or remove the lock screen.
    const bool needsLogin = with_.settings.settings().requirePasswordForActions || with_.coordinator.isAlarmActive ||
                            with_.cover.isShowing();
    return quitAuthorized_ || !needsLogin;
}

void MacAppDelegate::callQuitOff()
{
    ports_.application.replyToShouldTerminate(false);
    with_.presence.startHeartbeat();
    start(authorization_, authorizeQuit());
}

void MacAppDelegate::leaveDisarmed()
{
    // The armed state never survives the process, after the previous run or this one.
    quietly([this] { with_.settings.set(&AlarmSettings::isArmed, false); });
    quietly([this] { with_.coordinator.disarm(); });
}

void MacAppDelegate::registerForRemoteNotifications()
{
    const Weak<MacAppDelegate> weak = anchor_.weak();
    const auto setRegistered = [weak](bool isRegistered) {
        if (MacAppDelegate* const self = weak.get()) {
            self->with_.presence.setPushTokenRegistered(isRegistered);
        }
    };
    ports_.remoteNotifications.setReceiver({
        .didRegister = [setRegistered] { setRegistered(true); },
        .didFailToRegister = [setRegistered](const std::string& /*why*/) { setRegistered(false); },
        .didReceive =
            [weak](const Json& userInfo) {
                if (MacAppDelegate* const self = weak.get()) {
                    self->applicationDidReceiveRemoteNotification(userInfo);
                }
            },
    });
    ports_.remoteNotifications.registerForRemoteNotifications();
}

void MacAppDelegate::applicationDidReceiveRemoteNotification(const Json& userInfo)
{
    const auto notification = quietly([&] { return ports_.remoteNotifications.cloudNotification(userInfo); });
    if (!notification) {
        return;
    }
    ports_.journal.note(events::PushReceived{notification->subscriptionID.value_or("")});
    with_.presence.receive(*notification);
    if (notification->subscriptionID == CloudSubscriptions::alertIdentifier) {
        // Another Mac has raised an alert.
        with_.alerts.startRefresh();
    }
}

void MacAppDelegate::controlPreviewPanel()
{
    const Weak<MacAppDelegate> weak = anchor_.weak();
    const auto hand = [weak](bool isControlled) {
        if (MacAppDelegate* const self = weak.get()) {
            self->ports_.previewPanel.setDataSource(isControlled ? self->with_.photoPreview.dataSource() : nullptr);
        }
    };
    ports_.previewPanel.setControl({
        .accepts = [] { return true; },
        .begin = [hand] { hand(true); },
        .end = [hand] { hand(false); },
    });
}

void MacAppDelegate::systemDidWake()
{
    with_.presence.systemDidWake();
}

Async<void> MacAppDelegate::bringUpControlPanel()
{
    with_.windows.openControlPanel();
    co_return;
}

Async<void> MacAppDelegate::authorizeQuit()
{
    const bool hasPassed = co_await with_.passwordGate.authenticate(loginReason(ports_.language));
    if (!hasPassed) {
        co_return;
    }
    quitAuthorized_ = true;
    ports_.application.terminate();
}

Async<void> MacAppDelegate::cleanUpAndQuit()
{
    with_.presence.stopHeartbeat();
    try {
        co_await AsyncTimeout::run<void>(actor_, lastPublicationLimit, with_.presence.publishLastState());
    } catch (...) {
        // A late or failed publication, as without a network, must not delay the quit.
    }
    // Answer the system even if the publication was cancelled; only our own cancellation skips the reply.
    const bool isCancelled = co_await isTaskCancelled();
    if (isCancelled) {
        throw CancellationError{};
    }
    // The alarm may have gone off meanwhile.
    if (!mayQuit()) {
        callQuitOff();
        co_return;
    }
    quitCleanupDone_ = true;
    ports_.application.replyToShouldTerminate(true);
}

/// A request made while an answer is under way waits for that answer.
void MacAppDelegate::start(Task<void>& task, Async<void> work)
{
    if (isUnderWay(task)) {
        return;
    }
    task = actor_.spawn(std::move(work));
    tasks_.add(task);
}

} // namespace sentrel
