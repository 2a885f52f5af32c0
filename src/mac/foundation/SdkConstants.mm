#include "mac/foundation/SdkConstants.hpp"

#include "mac/foundation/FoundationValues.hpp"
#include "ports/Application.hpp"
#include "ports/AudioConstants.hpp"
#include "ports/Calendar.hpp"
#include "ports/Camera.hpp"
#include "ports/CameraConstants.hpp"
#include "ports/CloudAccount.hpp"
#include "ports/CloudConstants.hpp"
#include "ports/CloudDatabase.hpp"
#include "ports/NetworkPath.hpp"
#include "ports/SystemConstants.hpp"
#include "ports/WindowConstants.hpp"

#import <AVFoundation/AVFoundation.h>
#import <AppKit/AppKit.h>
#import <AudioToolbox/AudioToolbox.h>
#import <CloudKit/CloudKit.h>
#import <CommonCrypto/CommonCrypto.h>
#import <CoreAudio/CoreAudio.h>
#import <CoreServices/CoreServices.h>
#import <IOKit/hid/IOHIDKeys.h>
#import <IOKit/ps/IOPSKeys.h>
#import <IOKit/pwr_mgt/IOPMLib.h>
#import <LocalAuthentication/LocalAuthentication.h>
#import <Network/Network.h>
#import <Security/Security.h>
#import <ServiceManagement/ServiceManagement.h>

namespace sentrel::mac {

namespace {

using namespace ports;

/// Whether two constants of different types are the same number.
template <class Ours, class Theirs> constexpr bool same(Ours ours, Theirs theirs)
{
    return static_cast<std::int64_t>(ours) == static_cast<std::int64_t>(theirs);
}

// Windows and the application
static_assert(same(borderlessStyle, NSWindowStyleMaskBorderless));
static_assert(same(titledStyle, NSWindowStyleMaskTitled));
static_assert(same(closableStyle, NSWindowStyleMaskClosable));
static_assert(same(resizableStyle, NSWindowStyleMaskResizable));
static_assert(same(bufferedBacking, NSBackingStoreBuffered));
static_assert(same(joinsAllSpaces, NSWindowCollectionBehaviorCanJoinAllSpaces));
static_assert(same(stationary, NSWindowCollectionBehaviorStationary));
static_assert(same(ignoresWindowCycle, NSWindowCollectionBehaviorIgnoresCycle));
static_assert(same(fullScreenAuxiliary, NSWindowCollectionBehaviorFullScreenAuxiliary));
static_assert(same(fullScreenNone, NSWindowCollectionBehaviorFullScreenNone));
static_assert(same(widthSizable, NSViewWidthSizable));
static_assert(same(heightSizable, NSViewHeightSizable));
static_assert(same(regularActivationPolicy, NSApplicationActivationPolicyRegular));
static_assert(same(accessoryActivationPolicy, NSApplicationActivationPolicyAccessory));
static_assert(same(defaultPresentation, NSApplicationPresentationDefault));
static_assert(same(hidesDock, NSApplicationPresentationHideDock));
static_assert(same(hidesMenuBar, NSApplicationPresentationHideMenuBar));
static_assert(same(disablesProcessSwitching, NSApplicationPresentationDisableProcessSwitching));
static_assert(same(disablesForceQuit, NSApplicationPresentationDisableForceQuit));
static_assert(same(disablesSessionTermination, NSApplicationPresentationDisableSessionTermination));
static_assert(same(disablesHidingApplication, NSApplicationPresentationDisableHideApplication));
static_assert(same(warningAlertStyle, NSAlertStyleWarning));
static_assert(same(TerminateReply::cancel, NSTerminateCancel));
static_assert(same(TerminateReply::now, NSTerminateNow));
static_assert(same(TerminateReply::later, NSTerminateLater));

// Sound
static_assert(same(audio::systemObject, kAudioObjectSystemObject));
static_assert(same(audio::unknownObject, kAudioObjectUnknown));
static_assert(same(audio::globalScope, kAudioObjectPropertyScopeGlobal));
static_assert(same(audio::outputScope, kAudioObjectPropertyScopeOutput));
static_assert(same(audio::devicesSelector, kAudioHardwarePropertyDevices));
static_assert(same(audio::defaultOutputSelector, kAudioHardwarePropertyDefaultOutputDevice));
static_assert(same(audio::streamConfigurationSelector, kAudioDevicePropertyStreamConfiguration));
static_assert(same(audio::transportTypeSelector, kAudioDevicePropertyTransportType));
static_assert(same(audio::deviceUIDSelector, kAudioDevicePropertyDeviceUID));
static_assert(same(audio::nameSelector, kAudioObjectPropertyName));
static_assert(same(audio::muteSelector, kAudioDevicePropertyMute));
static_assert(same(audio::virtualMainVolumeSelector, kAudioHardwareServiceDeviceProperty_VirtualMainVolume));
static_assert(same(audio::volumeScalarSelector, kAudioDevicePropertyVolumeScalar));
static_assert(same(audio::builtInTransport, kAudioDeviceTransportTypeBuiltIn));
static_assert(same(audio::currentDeviceProperty, kAudioOutputUnitProperty_CurrentDevice));
static_assert(same(audio::globalUnitScope, kAudioUnitScope_Global));

// Camera
static_assert(same(CaptureAuthorization::notDetermined, AVAuthorizationStatusNotDetermined));
static_assert(same(CaptureAuthorization::restricted, AVAuthorizationStatusRestricted));
static_assert(same(CaptureAuthorization::denied, AVAuthorizationStatusDenied));
static_assert(same(CaptureAuthorization::authorized, AVAuthorizationStatusAuthorized));

// iCloud and the network
static_assert(same(CloudErrorCode::internalError, CKErrorInternalError));
static_assert(same(CloudErrorCode::partialFailure, CKErrorPartialFailure));
static_assert(same(CloudErrorCode::networkUnavailable, CKErrorNetworkUnavailable));
static_assert(same(CloudErrorCode::networkFailure, CKErrorNetworkFailure));
static_assert(same(CloudErrorCode::badContainer, CKErrorBadContainer));
static_assert(same(CloudErrorCode::serviceUnavailable, CKErrorServiceUnavailable));
static_assert(same(CloudErrorCode::requestRateLimited, CKErrorRequestRateLimited));
static_assert(same(CloudErrorCode::missingEntitlement, CKErrorMissingEntitlement));
static_assert(same(CloudErrorCode::notAuthenticated, CKErrorNotAuthenticated));
static_assert(same(CloudErrorCode::permissionFailure, CKErrorPermissionFailure));
static_assert(same(CloudErrorCode::unknownItem, CKErrorUnknownItem));
static_assert(same(CloudErrorCode::invalidArguments, CKErrorInvalidArguments));
static_assert(same(CloudErrorCode::serverRecordChanged, CKErrorServerRecordChanged));
static_assert(same(CloudErrorCode::serverRejectedRequest, CKErrorServerRejectedRequest));
static_assert(same(CloudErrorCode::operationCancelled, CKErrorOperationCancelled));
static_assert(same(CloudErrorCode::zoneBusy, CKErrorZoneBusy));
static_assert(same(CloudErrorCode::quotaExceeded, CKErrorQuotaExceeded));
static_assert(same(CloudErrorCode::serverResponseLost, CKErrorServerResponseLost));
static_assert(same(CloudErrorCode::accountTemporarilyUnavailable, CKErrorAccountTemporarilyUnavailable));
static_assert(same(CloudAccountStatus::couldNotDetermine, CKAccountStatusCouldNotDetermine));
static_assert(same(CloudAccountStatus::available, CKAccountStatusAvailable));
static_assert(same(CloudAccountStatus::restricted, CKAccountStatusRestricted));
static_assert(same(CloudAccountStatus::noAccount, CKAccountStatusNoAccount));
static_assert(same(CloudAccountStatus::temporarilyUnavailable, CKAccountStatusTemporarilyUnavailable));
static_assert(same(CloudSavePolicy::ifServerRecordUnchanged, CKRecordSaveIfServerRecordUnchanged));
static_assert(same(CloudSavePolicy::changedKeys, CKRecordSaveChangedKeys));
static_assert(same(CloudSavePolicy::allKeys, CKRecordSaveAllKeys));
static_assert(same(firesOnRecordCreation, CKQuerySubscriptionOptionsFiresOnRecordCreation));
static_assert(same(firesOnRecordUpdate, CKQuerySubscriptionOptionsFiresOnRecordUpdate));
static_assert(same(NetworkPathStatus::invalid, nw_path_status_invalid));
static_assert(same(NetworkPathStatus::satisfied, nw_path_status_satisfied));
static_assert(same(NetworkPathStatus::unsatisfied, nw_path_status_unsatisfied));
static_assert(same(NetworkPathStatus::satisfiable, nw_path_status_satisfiable));

// The rest of the system
static_assert(same(assertionLevelOn, kIOPMAssertionLevelOn));
static_assert(same(securitySuccess, errSecSuccess));
static_assert(same(securitySuccess, kCCSuccess));
static_assert(same(keychainItemNotFound, errSecItemNotFound));
static_assert(same(algorithmPbkdf2, kCCPBKDF2));
static_assert(same(pseudoRandomFunctionHmacSha256, kCCPRFHmacAlgSHA256));
static_assert(same(deviceOwnerAuthentication, LAPolicyDeviceOwnerAuthentication));
static_assert(same(loginItemEnabled, SMAppServiceStatusEnabled));
static_assert(same(loginItemRequiresApproval, SMAppServiceStatusRequiresApproval));
static_assert(same(bundleIdentifierType, typeApplicationBundleID));
static_assert(same(anyAppleEvent, typeWildCard));
static_assert(same(systemDefinedEvent, NSEventTypeSystemDefined));
static_assert(same(hidEventTap, kCGHIDEventTap));
static_assert(same(Calendar::Style::none, NSDateFormatterNoStyle));
static_assert(same(Calendar::Style::shortStyle, NSDateFormatterShortStyle));
static_assert(same(Calendar::Style::mediumStyle, NSDateFormatterMediumStyle));
static_assert(same(Calendar::Style::longStyle, NSDateFormatterLongStyle));

struct Pair {
    const char* name;
    std::string ours;
    NSString* theirs;
};

} // namespace

std::vector<std::string> differingSdkTexts()
{
    const Pair pairs[] = {
        {"AVMediaTypeVideo", videoMediaType, AVMediaTypeVideo},
        {"AVCaptureDeviceTypeBuiltInWideAngleCamera", builtInCameraType, AVCaptureDeviceTypeBuiltInWideAngleCamera},
        {"AVCaptureSessionPresetPhoto", photoPreset, AVCaptureSessionPresetPhoto},
        {"CKErrorDomain", cloudErrorDomain, CKErrorDomain},
        {"CKAccountChangedNotification", cloudAccountChanged, CKAccountChangedNotification},
        {"NSApplicationDidChangeScreenParametersNotification", screenParametersChanged,
         NSApplicationDidChangeScreenParametersNotification},
        {"NSApplicationDidResignActiveNotification", applicationResignedActive,
         NSApplicationDidResignActiveNotification},
        {"NSWorkspaceScreensDidSleepNotification", screensDidSleep, NSWorkspaceScreensDidSleepNotification},
        {"NSWorkspaceDidWakeNotification", workspaceDidWake, NSWorkspaceDidWakeNotification},
        {"kIOPSPowerSourceStateKey", powerSourceStateKey, @kIOPSPowerSourceStateKey},
        {"kIOPSACPowerValue", acPowerValue, @kIOPSACPowerValue},
#ifdef kIOPMAssertPreventUserIdleSystemSleep
        {"kIOPMAssertPreventUserIdleSystemSleep", preventIdleSleepAssertion,
         (__bridge NSString*)kIOPMAssertPreventUserIdleSystemSleep},
#endif
        {"kIOHIDPrimaryUsagePageKey", primaryUsagePageKey, @kIOHIDPrimaryUsagePageKey},
        {"kIOHIDPrimaryUsageKey", primaryUsageKey, @kIOHIDPrimaryUsageKey},
        {"kIOHIDReportIntervalKey", reportIntervalKey, @kIOHIDReportIntervalKey},
    };
    std::vector<std::string> differing;
    for (const Pair& pair : pairs) {
        const std::string theirs = textOf(pair.theirs);
        if (theirs != pair.ours) {
            differing.push_back(std::string{pair.name} + ": " + pair.ours + ", " + theirs);
        }
    }
    return differing;
}

} // namespace sentrel::mac
