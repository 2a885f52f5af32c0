#include "runtime/Semaphore.hpp"

namespace sentrel {

void Semaphore::signal()
{
    const std::lock_guard guard{mutex_};
    while (firstWaiter_ != nullptr) {
        SignalWait& waiter = *firstWaiter_;
        firstWaiter_ = waiter.nextWaiter_;
        if (waiter.takeSignal()) {
            return;
        }
    }
    ++count_;
}

bool Semaphore::takeOrQueue(SignalWait& wait)
{
    const std::lock_guard guard{mutex_};
    if (count_ > 0) {
        --count_;
        wait.takeAtOnce();
        return false;
    }
    SignalWait** last = &firstWaiter_;
    while (*last != nullptr) {
        last = &(*last)->nextWaiter_;
    }
    *last = &wait;
    return true;
}

void Semaphore::leaveQueue(SignalWait& wait)
{
    const std::lock_guard guard{mutex_};
    for (SignalWait** link = &firstWaiter_; *link != nullptr; link = &(*link)->nextWaiter_) {
        if (*link == &wait) {
            *link = wait.nextWaiter_;
            return;
        }
    }
}

void Semaphore::SignalWait::takeAtOnce()
{
    signalled_ = true;
    completeAtOnce();
}

bool Semaphore::SignalWait::takeSignal()
{
    // Set before the claim, which posts the task; reverted when the wait was over already.
    signalled_ = true;
    if (claim()) {
        return true;
    }
    signalled_ = false;
    return false;
}

bool Semaphore::SignalWait::arm()
{
    if (!semaphore_.takeOrQueue(*this)) {
        return false;
    }
    if (deadline_) {
        task().scheduler().startTimer(*this, *deadline_);
    }
    return true;
}

void Semaphore::SignalWait::disarm()
{
    semaphore_.leaveQueue(*this);
    if (deadline_) {
        task().scheduler().cancelTimer(*this);
    }
}

} // namespace sentrel
