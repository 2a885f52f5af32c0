#pragma once

#include "platform/Journal.hpp"

#include <memory>

namespace sentrel::macos {

/// The unified log, under the product's own subsystem. Each event is one line that everybody who may read the log can
/// read: its name, then its fields as JSON.
class MacJournal final : public platform::Journal {
public:
    MacJournal();
    ~MacJournal() override;

private:
    void write(std::string_view event, std::initializer_list<Field> fields) override;

    struct Log;
    std::unique_ptr<Log> log_;
};

} // namespace sentrel::macos
