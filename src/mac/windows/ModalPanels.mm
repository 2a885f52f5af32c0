#include "mac/windows/ModalPanels.hpp"

#include "runtime/Semaphore.hpp"

#import <Foundation/Foundation.h>

#include <memory>
#include <utility>

namespace sentrel::mac {

namespace {

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
    Hold& operator=(const Hold&) = delete;

private:
    const std::shared_ptr<Session> session_;
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

Async<std::int64_t> runModally(ModalPanel panel)
{
    const auto session = std::make_shared<Session>();
    session->panel = std::move(panel);
    const Hold hold{session};
    performInMainRunLoop([session] { session->run(); });
    co_await session->closed.wait();
    co_return session->response;
}

} // namespace sentrel::mac
