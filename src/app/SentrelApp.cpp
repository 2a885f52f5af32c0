#include "app/SentrelApp.hpp"

#include "cloud/CloudSubscriptions.hpp"
#include "core/CompatibleComputer.hpp"
#include "platform/Journal.hpp"
#include "platform/RemoteNotifications.hpp"
#include "platform/WorkspaceNotifications.hpp"
#include "runtime/WeakCall.hpp"

namespace sentrel {

SentrelApp::SentrelApp(platform::Platform& platform)
    : actor_(platform.scheduler),
      isComputerCompatible_(isCompatibleComputer(platform.host)),
      settings_(platform.defaults),
      alertStore_(actor_, platform.files, platform.host),
      mediaPlayback_(actor_, platform.runningApplications, platform.automation, platform.eventPosting),
      outputVolume_(platform.audioHardware, platform.language),
      soundPlayer_(actor_, {outputVolume_, mediaPlayback_, platform.audioEngines, platform.systemBeep,
                            platform.defaults, platform.language, platform.journal}),
      camera_(platform.scheduler, platform.camera, platform.imageCodec, platform.standardOutput, platform.journal),
      passcodes_(platform.keychain, platform.cryptography, platform.random, platform.generalRandom),
      passwordGate_(platform.loginAuthentication, platform.alerts, platform.applicationActivation, platform.language),
      cover_(actor_, coverAlarm_, passcodes_, settings_,
             {platform.windows, platform.applicationNotifications, platform.applicationActivation, platform.wallClock,
              platform.language, platform.journal}),
      cloud_(actor_, {platform.cloudAccount, platform.cloudDatabase, platform.defaults, platform.files, platform.host,
                      platform.wallClock, platform.random, platform.language, platform.journal}),
      uploader_(actor_, cloud_, platform.journal),
      alertsService_(actor_, cloud_, alertStore_, uploader_, [this] { coordinator_.clearLocalSaveNoticeIfResolved(); },
                     {platform.defaults, platform.files, platform.wallClock, platform.calendar, platform.language}),
      presence_(actor_, isComputerCompatible_, cloud_, settings_, alarmForPresence(),
                {platform.defaults, platform.host, platform.wallClock, platform.random, platform.journal}),
      coordinator_(actor_, isComputerCompatible_,
                   {settings_, alertStore_, soundPlayer_, mediaPlayback_, camera_, cover_, cloud_, uploader_,
                    alertsService_, presence_},
                   {platform.powerSources, platform.deviceRegistry, platform.workspaceNotifications, platform.hidEvents,
                    platform.powerAssertions, platform.wallClock, platform.random, platform.host, platform.language,
                    platform.journal}),
      journal_(coordinator_, platform.journal),
      connectionMonitor_(actor_, cloud_, cloudCatchUp_, presence_,
                         {platform.networkPaths, platform.applicationNotifications, platform.journal}),
      remoteNotifications_(platform.remoteNotifications),
      workspaceNotifications_(platform.workspaceNotifications),
      log_(platform.journal)
{
}

MacPresenceService::Alarm SentrelApp::alarmForPresence()
{
    return {
        .isArmed = [this] { return coordinator_.isArmed.get(); },
        .syncWithSettings = [this](const AlarmSettings& settings) { coordinator_.syncWithSettings(settings); },
        .clearLocalSaveNoticeIfResolved = [this] { coordinator_.clearLocalSaveNoticeIfResolved(); },
    };
}

void SentrelApp::launch()
{
    soundPlayer_.restoreLeftoverState();
    leaveDisarmed();
    presence_.start();
    connectionMonitor_.start();
    registerForPushes();
    wakeRegistration_ = workspaceNotifications_.observe("NSWorkspaceDidWakeNotification",
                                                        weakCall(actor_, anchor_.weak(), &SentrelApp::systemDidWake));
}

void SentrelApp::registerForPushes()
{
    const Weak<SentrelApp> weak = anchor_.weak();
    remoteNotifications_.setReceiver({
        .didRegister =
            [weak] {
                if (SentrelApp* const app = weak.get()) {
                    app->presence_.setPushTokenRegistered(true);
                }
            },
        .didFailToRegister =
            [weak](const std::string& /*why*/) {
                if (SentrelApp* const app = weak.get()) {
                    app->presence_.setPushTokenRegistered(false);
                }
            },
        .didReceive =
            [weak](const Json& userInfo) {
                if (SentrelApp* const app = weak.get()) {
                    app->receivePush(userInfo);
                }
            },
    });
    remoteNotifications_.registerForRemoteNotifications();
}

void SentrelApp::receivePush(const Json& userInfo)
{
    const auto notification = remoteNotifications_.cloudNotification(userInfo);
    if (!notification) {
        return;
    }
    log_.note("push.received", {{"subscription", std::string_view{notification->subscriptionID.value_or("")}}});
    presence_.receive(*notification);
    if (notification->subscriptionID == CloudSubscriptions::alertIdentifier) {
        // Another Mac's alert.
        alertsService_.startRefresh();
    }
}

void SentrelApp::systemDidWake()
{
    presence_.systemDidWake();
}

void SentrelApp::terminate()
{
    leaveDisarmed();
    soundPlayer_.stopAndWait();
}

void SentrelApp::leaveDisarmed()
{
    // Whatever the previous run left, or this one leaves: being armed never survives the process.
    settings_.set(&AlarmSettings::isArmed, false);
    coordinator_.disarm();
}

} // namespace sentrel
