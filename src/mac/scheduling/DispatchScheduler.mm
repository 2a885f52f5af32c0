#include "mac/scheduling/DispatchScheduler.hpp"

#include "runtime/Latch.hpp"

#include <cstddef>

namespace sentrel::mac {

DispatchScheduler::DispatchScheduler()
    : main_(DispatchExecutor::makeMain()),
      globals_{DispatchExecutor::makeGlobal(QualityOfService::utility),
               DispatchExecutor::makeGlobal(QualityOfService::standard),
               DispatchExecutor::makeGlobal(QualityOfService::userInitiated),
               DispatchExecutor::makeGlobal(QualityOfService::userInteractive)},
      timers_(std::make_unique<DispatchTimers>())
{
}

DispatchScheduler::~DispatchScheduler()
{
    main_->stop();
    for (const auto& global : globals_) {
        global->stop();
    }
    tasks().endAll();
    timers_.reset();
}

Executor& DispatchScheduler::globalExecutor(QualityOfService qualityOfService)
{
    return *globals_.at(static_cast<std::size_t>(qualityOfService));
}

std::unique_ptr<Executor> DispatchScheduler::makeSerialExecutor(const std::string& label,
                                                                QualityOfService qualityOfService)
{
    return DispatchExecutor::makeSerial(label, qualityOfService);
}

void DispatchScheduler::blockUntil(Latch& latch)
{
    latch.wait();
}

} // namespace sentrel::mac
