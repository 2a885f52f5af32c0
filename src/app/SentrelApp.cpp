#include "app/SentrelApp.hpp"

#include "core/CompatibleComputer.hpp"
#include "ports/Application.hpp"

namespace sentrel {

SentrelApp::SentrelApp(ports::Platform& platform)
    : actor_(platform.scheduler),
      isComputerCompatible_(isCompatibleComputer(platform.host)),
      settings_(actor_, platform.defaults),
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
                      platform.wallClock, platform.generalRandom, platform.language, platform.journal}),
      uploader_(actor_, cloud_, platform.journal),
      alertsService_(actor_, cloud_, alertStore_, uploader_, [this] { coordinator_.clearLocalSaveNoticeIfResolved(); },
                     {platform.defaults, platform.files, platform.wallClock, platform.calendar, platform.language}),
      presence_(actor_, isComputerCompatible_, cloud_, settings_, alarmForPresence(),
                {platform.defaults, platform.host, platform.wallClock, platform.generalRandom, platform.journal}),
      coordinator_(actor_, isComputerCompatible_,
                   {settings_, alertStore_, soundPlayer_, mediaPlayback_, camera_, cover_, cloud_, uploader_,
                    alertsService_, presence_},
                   {platform.powerSources, platform.deviceRegistry, platform.workspaceNotifications, platform.hidEvents,
                    platform.powerAssertions, platform.wallClock, platform.generalRandom, platform.host,
                    platform.language, platform.journal}),
      journal_(coordinator_, platform.journal),
      connectionMonitor_(actor_, cloud_, cloudCatchUp_, presence_,
                         {platform.networkPaths, platform.applicationNotifications, platform.journal}),
      photoPreview_(platform.previewPanel),
      delegate_(actor_, isComputerCompatible_,
                {settings_, soundPlayer_, coordinator_, alertsService_, presence_, connectionMonitor_, passwordGate_,
                 cover_, photoPreview_, windowHooks_},
                {platform.application, platform.remoteNotifications, platform.workspaceNotifications,
                 platform.previewPanel, platform.language, platform.journal}),
      scenes_(actor_, isComputerCompatible_,
              {settings_, coordinator_, cloud_, alertsService_, presence_, passcodes_, passwordGate_, photoPreview_,
               windowHooks_},
              platform),
      application_(platform.application)
{
    application_.setDelegate({
        .didFinishLaunching = [this] { launch(); },
        .shouldTerminate = [this] { return delegate_.applicationShouldTerminate(); },
        .willTerminate = [this] { terminate(); },
        .shouldTerminateAfterLastWindowClosed =
            [this] { return delegate_.applicationShouldTerminateAfterLastWindowClosed(); },
    });
}

SentrelApp::~SentrelApp()
{
    application_.setDelegate({});
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
    delegate_.applicationDidFinishLaunching();
    scenes_.appear();
}

void SentrelApp::terminate()
{
    delegate_.applicationWillTerminate();
}

} // namespace sentrel
