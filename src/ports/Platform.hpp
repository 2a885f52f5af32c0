#pragma once

namespace sentrel {
class Scheduler;
}

namespace sentrel::ports {

class Alerts;
class Application;
class ApplicationActivation;
class ApplicationNotifications;
class AudioEngines;
class AudioHardware;
class Automation;
class Calendar;
class Camera;
class CloudAccount;
class CloudDatabase;
class Cryptography;
class DeviceRegistry;
class EventPosting;
class FileSystem;
class GeneralRandom;
class HidEventSystem;
class HostInfo;
class ImageCodec;
class Journal;
class Keychain;
class Language;
class LoginAuthentication;
class LoginItem;
class NetworkPaths;
class PowerAssertions;
class PowerSources;
class PreviewPanel;
class Random;
class RemoteNotifications;
class RunningApplications;
class SavePanels;
class StandardOutput;
class StatusBar;
class SystemBeep;
class UserDefaults;
class WallClock;
class Windows;
class WorkspaceNotifications;

/// The operating system as the product sees it: one reference for each port. Only the composition root receives it
/// whole; a service takes the ports that it uses. Everything referred to outlives the product.
struct Platform {
    Scheduler& scheduler;
    WallClock& wallClock;
    Random& random;
    HostInfo& host;
    FileSystem& files;
    UserDefaults& defaults;
    Language& language;
    Calendar& calendar;
    Journal& journal;
    StandardOutput& standardOutput;
    PowerSources& powerSources;
    PowerAssertions& powerAssertions;
    DeviceRegistry& deviceRegistry;
    WorkspaceNotifications& workspaceNotifications;
    HidEventSystem& hidEvents;
    AudioHardware& audioHardware;
    AudioEngines& audioEngines;
    SystemBeep& systemBeep;
    RunningApplications& runningApplications;
    Automation& automation;
    EventPosting& eventPosting;
    Camera& camera;
    ImageCodec& imageCodec;
    Keychain& keychain;
    Cryptography& cryptography;
    GeneralRandom& generalRandom;
    LoginAuthentication& loginAuthentication;
    Alerts& alerts;
    ApplicationActivation& applicationActivation;
    ApplicationNotifications& applicationNotifications;
    Windows& windows;
    CloudAccount& cloudAccount;
    CloudDatabase& cloudDatabase;
    NetworkPaths& networkPaths;
    RemoteNotifications& remoteNotifications;
    Application& application;
    StatusBar& statusBar;
    SavePanels& savePanels;
    PreviewPanel& previewPanel;
    LoginItem& loginItem;
};

} // namespace sentrel::ports
