#include "mac/Adapters.hpp"

#include "mac/foundation/FoundationValues.hpp"
#include "mac/windows/Windows.hpp"
#include "runtime/Semaphore.hpp"

#import <AppKit/AppKit.h>
#import <UniformTypeIdentifiers/UniformTypeIdentifiers.h>

#include <cstdint>
#include <memory>
#include <utility>

namespace sentrel::mac {

namespace {

/// A panel to run modally. Called on the main thread.
struct ModalPanel {
    std::function<std::int64_t()> run; ///< shows the panel; returns the response once it is closed
    std::function<void()> close;       ///< closes the running panel
};

/// A panel's run, shared by the run loop and the waiting task.
struct Session {
    ModalPanel panel;
    Semaphore closed;
    std::int64_t response = 0;
    bool isWanted = true;
    bool isRunning = false;

    void run()
    {
        if (!isWanted) {
            return;
        }
        isRunning = true;
        response = panel.run();
        isRunning = false;
        closed.signal();
    }
};

/// Ends the session when the waiting task ends.
class Hold {
public:
    explicit Hold(std::shared_ptr<Session> session) : session_(std::move(session)) {}
    ~Hold()
    {
        session_->isWanted = false;
        if (session_->isRunning) {
            session_->panel.close();
        }
    }
    Hold(const Hold&) = delete;

private:
    const std::shared_ptr<Session> session_;
};

/// Runs the panel while the main actor goes on; returns its response. Waits for an earlier panel to close. If the
/// waiting task ends first, so does the panel. Main thread.
Async<std::int64_t> runModally(ModalPanel panel)
{
    const auto session = std::make_shared<Session>();
    session->panel = std::move(panel);
    const Hold hold{session};
    performInMainRunLoop([session] { session->run(); });
    co_await session->closed.wait();
    co_return session->response;
}

/// Ends the modal loop of the window, if that is running.
void stopModal(NSWindow* window)
{
    if (NSApp.modalWindow != window) {
        return;
    }
    [NSApp stopModalWithCode:NSModalResponseAbort];
    // The loop notices only after an event.
    NSEvent* const event = [NSEvent otherEventWithType:NSEventTypeApplicationDefined
                                              location:NSZeroPoint
                                         modifierFlags:NSEventModifierFlags {}
                                             timestamp:0.0
                                          windowNumber:0
                                               context:nil
                                               subtype:0
                                                 data1:0
                                                 data2:0];
    [NSApp postEvent:event atStart:YES];
}

ModalPanel panelOf(const ports::AlertContent& content)
{
    NSAlert* const alert = [[NSAlert alloc] init];
    alert.alertStyle = static_cast<NSAlertStyle>(content.style);
    alert.messageText = stringObject(content.messageText);
    alert.informativeText = stringObject(content.informativeText);
    return {[alert]() -> std::int64_t { return [alert runModal]; }, [alert] { stopModal(alert.window); }};
}

/// AppKit's alert panels.
class MacAlerts final : public ports::Alerts {
public:
    [[nodiscard]] Async<std::int64_t> runModal(ports::AlertContent content) override
    {
        return runModally(panelOf(content));
    }
};

class Panel {
public:
    explicit Panel(const ports::SavePanelContent& content)
    {
        NSMutableArray<UTType*>* const types = [NSMutableArray array];
        for (const std::string& identifier : content.allowedContentTypes) {
            UTType* const type = [UTType typeWithIdentifier:stringObject(identifier)];
            if (type != nil) {
                [types addObject:type];
            }
        }
        panel_.title = stringObject(content.title);
        // Save panels have no title bar; the message shows the title instead.
        panel_.message = panel_.title;
        panel_.allowedContentTypes = types;
        panel_.nameFieldStringValue = stringObject(content.nameFieldStringValue);
    }

    [[nodiscard]] ModalPanel modal() const
    {
        NSSavePanel* const panel = panel_;
        return {[panel]() -> std::int64_t { return [panel runModal]; }, [panel] { [panel cancel:nil]; }};
    }

    [[nodiscard]] std::optional<std::filesystem::path> chosen() const
    {
        return panel_.URL == nil ? std::nullopt : std::optional{pathOf(panel_.URL)};
    }

private:
    NSSavePanel* const panel_ = [NSSavePanel savePanel];
};

/// AppKit's save panels.
class MacSavePanels final : public ports::SavePanels {
public:
    [[nodiscard]] Async<std::optional<std::filesystem::path>> run(ports::SavePanelContent content) override
    {
        const Panel panel{content};
        const std::int64_t response = co_await runModally(panel.modal());
        if (response != NSModalResponseOK) {
            co_return std::nullopt;
        }
        co_return panel.chosen();
    }
};

} // namespace

void performInMainRunLoop(std::function<void()> work)
{
    const auto shared = std::move(work);
    CFRunLoopPerformBlock(CFRunLoopGetMain(), kCFRunLoopDefaultMode, ^{
        shared();
    });
    CFRunLoopWakeUp(CFRunLoopGetMain());
}

std::unique_ptr<ports::Alerts> makeAlerts()
{
    return std::make_unique<MacAlerts>();
}

std::unique_ptr<ports::SavePanels> makeSavePanels()
{
    return std::make_unique<MacSavePanels>();
}

} // namespace sentrel::mac
