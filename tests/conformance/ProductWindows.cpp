#include "conformance/ProductWindows.hpp"

#include "app/SentrelApp.hpp"
#include "app/ShellWindowDelegate.hpp"
#include "lock/ScreenCoverView.hpp"
#include "ports/Application.hpp"
#include "ports/ApplicationActivation.hpp"
#include "ports/HostInfo.hpp"
#include "ports/Keychain.hpp"
#include "ports/StatusBar.hpp"
#include "ports/SystemConstants.hpp"
#include "ports/Windows.hpp"
#include "support/MemoryDefaults.hpp"
#include "ui/Attachments.hpp"
#include "ui/Interaction.hpp"
#include "ui/Node.hpp"

#include <map>

namespace sentrel::conformance {

using namespace std::chrono_literals;

namespace {

/// The newest content of each window by its identifier, and the menu's.
using Contents = std::map<std::string, ui::View>;
constexpr const char* menuName = "menu";

class KeptWindow final : public ports::Window {
public:
    explicit KeptWindow(Contents& contents) : contents_(contents) {}
    void setLevel(std::int64_t) override {}
    void setCollectionBehavior(std::uint64_t) override {}
    void setOpaque(bool) override {}
    void setBackgroundColor(const ui::Color&) override {}
    void setHasShadow(bool) override {}
    void setReleasedWhenClosed(bool) override {}
    void setTitle(const std::string&) override {}
    void setIdentifier(const std::string& identifier) override { identifier_ = identifier; }
    void setDelegate(ports::WindowDelegate) override {}
    void setFrame(const ports::Rectangle& frame, bool) override { frame_ = frame; }
    void setContentMinSize(const ports::Size&) override {}
    void setContentMaxSize(const ports::Size&) override {}
    void center() override {}
    [[nodiscard]] ports::Rectangle frame() override { return frame_; }
    [[nodiscard]] bool isVisible() override { return isVisible_; }
    [[nodiscard]] ports::Rectangle frameForContent(const ports::Rectangle& content) override { return content; }
    [[nodiscard]] ports::Rectangle contentForFrame(const ports::Rectangle& frame) override { return frame; }
    [[nodiscard]] ports::Rectangle contentFrame() override { return frame_; }
    void hostContent(const ports::Rectangle&, std::uint64_t) override {}
    void showContent(ui::View content) override { contents_[identifier_] = std::move(content); }
    void orderFrontRegardless() override { isVisible_ = true; }
    void makeKey() override {}
    void makeKeyAndOrderFront() override { isVisible_ = true; }
    void orderOut() override { isVisible_ = false; }

private:
    Contents& contents_;
    std::string identifier_;
    ports::Rectangle frame_{0, 0, 800, 600};
    bool isVisible_ = false;
};

class KeptWindows final : public ports::Windows {
public:
    explicit KeptWindows(Contents& contents) : contents_(contents) {}
    [[nodiscard]] std::vector<ports::Screen> screens() override { return {{1, {0, 0, 1512, 982}}}; }
    [[nodiscard]] std::int64_t shieldingLevel() override { return 1000; }
    [[nodiscard]] std::unique_ptr<ports::Window> makeWindow(const ports::WindowDescription&) override
    {
        return std::make_unique<KeptWindow>(contents_);
    }

private:
    Contents& contents_;
};

class KeptStatusItem final : public ports::StatusItem {
public:
    explicit KeptStatusItem(Contents& contents) : contents_(contents) {}
    void setImage(const std::string&, const std::string&) override {}
    void showContent(ui::View content) override { contents_[menuName] = std::move(content); }
    void setOpened(std::function<void()>) override {}
    void dismiss() override {}

private:
    Contents& contents_;
};

class KeptStatusBar final : public ports::StatusBar {
public:
    explicit KeptStatusBar(Contents& contents) : contents_(contents) {}
    [[nodiscard]] std::unique_ptr<ports::StatusItem> makeStatusItem() override
    {
        return std::make_unique<KeptStatusItem>(contents_);
    }

private:
    Contents& contents_;
};

class KeptApplication final : public ports::Application {
public:
    void setDelegate(ports::ApplicationDelegate itsDelegate) override { delegate = std::move(itsDelegate); }
    void setActivationPolicy(std::int64_t) override {}
    void terminate() override {}
    void replyToShouldTerminate(bool) override {}
    ports::ApplicationDelegate delegate;
};

class NoActivation final : public ports::ApplicationActivation {
public:
    void activate(bool) override {}
    bool setPresentationOptions(std::uint64_t) override { return true; }
};

class EmptyKeychain final : public ports::Keychain {
public:
    [[nodiscard]] Copied copyMatching(const ports::KeychainDictionary&) override
    {
        return {ports::keychainItemNotFound, std::nullopt};
    }
    [[nodiscard]] std::int32_t add(const ports::KeychainDictionary&) override { return ports::keychainItemNotFound; }
    [[nodiscard]] std::int32_t update(const ports::KeychainDictionary&, const ports::KeychainDictionary&) override
    {
        return ports::keychainItemNotFound;
    }
    std::int32_t remove(const ports::KeychainDictionary&) override { return ports::keychainItemNotFound; }
};

/// A MacBook with a folder of its own.
class OwnFolderHost final : public ports::HostInfo {
public:
    explicit OwnFolderHost(std::filesystem::path folder) : folder_(std::move(folder)) {}
    [[nodiscard]] std::optional<std::string> systemControlText(const std::string&) override { return "MacBookPro18,3"; }
    [[nodiscard]] std::optional<Bytes> registryData(const std::string&, const std::string&) override { return {}; }
    [[nodiscard]] std::optional<std::string> localizedName() override { return "MacBook"; }
    [[nodiscard]] std::optional<std::string> bundleIdentifier() override { return "pelma.Sentrel.conformance"; }
    [[nodiscard]] std::optional<std::filesystem::path> applicationSupportDirectory() override { return folder_; }
    [[nodiscard]] std::filesystem::path temporaryDirectory() override { return folder_; }

private:
    const std::filesystem::path folder_;
};

/// The product on the platform, with the ports above in place of the platform's.
class ProductRun {
public:
    ProductRun(const Subject& subject, ports::Language& language)
        : subject_(subject), language_(language), host_(subject.folder / "windows"), platform_(replaced())
    {
        AlarmSettings chosen;
        chosen.requirePasswordForActions = false;
        app_.settings().setSettings(chosen);
        AlertEvent alert;
        alert.id = UUID::fromRandom({1, 2, 3});
        alert.timestamp = Date{771586860.0};
        alert.deviceName = "MacBook";
        app_.alertStore().save(alert, std::nullopt, true);
        application_.delegate.didFinishLaunching();
        settle();
    }

    std::vector<NamedTree> walk()
    {
        press(menuName, "settings");
        press(menuName, "alertList");
        const std::string main{mainWindow.identifier};
        const std::string alerts{alertsWindow.identifier};
        std::vector<NamedTree> trees{
            {"menu", contents_[menuName]}, {"settings", contents_[main]}, {"alerts", contents_[alerts]}};
        ui::selectRows(contents_[alerts], "alerts", {UUID::fromRandom({1, 2, 3}).text()});
        settle();
        trees.emplace_back("alert", contents_[alerts]);
        press(main, "setPasscode");
        for (const ui::Attachment& attachment : ui::attachmentsOf(contents_[main])) {
            if (ui::elementOf<ui::Sheet>(*attachment.view) != nullptr) {
                trees.emplace_back("passcode", attachment.view->children.front());
            }
        }
        ScreenCoverView cover{MainActor{subject_.platform.scheduler}, subject_.platform.wallClock, language_,
                              [](SecretText, const ScreenCoverView::Answered&) {}};
        trees.emplace_back("cover", cover.body());
        return trees;
    }

private:
    ports::Platform replaced();

    void press(const std::string& window, std::string_view wanted)
    {
        const ui::View shown = contents_[window]; // the action brings another
        ui::press(shown, wanted);
        settle();
    }

    void settle() { subject_.pass(100ms); }

    const Subject& subject_;
    ports::Language& language_;
    Contents contents_;
    KeptWindows windows_{contents_};
    KeptStatusBar statusBar_{contents_};
    KeptApplication application_;
    NoActivation activation_;
    EmptyKeychain keychain_;
    test::MemoryDefaults defaults_;
    OwnFolderHost host_;
    ports::Platform platform_;
    SentrelApp app_{platform_};
};

ports::Platform ProductRun::replaced()
{
    const ports::Platform& of = subject_.platform;
    return {
        .scheduler = of.scheduler,
        .wallClock = of.wallClock,
        .random = of.random,
        .host = host_,
        .files = of.files,
        .defaults = defaults_,
        .language = language_,
        .calendar = of.calendar,
        .journal = of.journal,
        .standardOutput = of.standardOutput,
        .powerSources = of.powerSources,
        .powerAssertions = of.powerAssertions,
        .deviceRegistry = of.deviceRegistry,
        .workspaceNotifications = of.workspaceNotifications,
        .hidEvents = of.hidEvents,
        .audioHardware = of.audioHardware,
        .audioEngines = of.audioEngines,
        .systemBeep = of.systemBeep,
        .runningApplications = of.runningApplications,
        .automation = of.automation,
        .eventPosting = of.eventPosting,
        .camera = of.camera,
        .imageCodec = of.imageCodec,
        .keychain = keychain_,
        .cryptography = of.cryptography,
        .generalRandom = of.generalRandom,
        .loginAuthentication = of.loginAuthentication,
        .alerts = of.alerts,
        .applicationActivation = activation_,
        .applicationNotifications = of.applicationNotifications,
        .windows = windows_,
        .cloudAccount = of.cloudAccount,
        .cloudDatabase = of.cloudDatabase,
        .networkPaths = of.networkPaths,
        .remoteNotifications = of.remoteNotifications,
        .application = application_,
        .statusBar = statusBar_,
        .savePanels = of.savePanels,
        .previewPanel = of.previewPanel,
        .loginItem = of.loginItem,
    };
}

} // namespace

std::vector<NamedTree> productWindows(const Subject& subject, ports::Language& language)
{
    ProductRun run{subject, language};
    return run.walk();
}

} // namespace sentrel::conformance
