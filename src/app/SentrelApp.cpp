#include "app/SentrelApp.hpp"

#include "core/CompatibleComputer.hpp"

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
      coordinator_(
          actor_, isComputerCompatible_,
          {settings_, alertStore_, soundPlayer_, mediaPlayback_, camera_, cover_, cloud_, alertList_, presence_},
          {platform.powerSources, platform.deviceRegistry, platform.workspaceNotifications, platform.hidEvents,
           platform.powerAssertions, platform.wallClock, platform.random, platform.host, platform.language,
           platform.journal}),
      journal_(coordinator_, platform.journal)
{
}

void SentrelApp::launch()
{
    soundPlayer_.restoreLeftoverState();
    leaveDisarmed();
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
