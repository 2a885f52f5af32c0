#pragma once

#include "ports/Journal.hpp"

#include <memory>

namespace sentrel::mac {

/// The unified log, under the product's own subsystem. Each event is one public line: its name, then its fields as
/// JSON.
class MacJournal final : public ports::Journal {
public:
    MacJournal();
    ~MacJournal() override;

private:
    void write(std::string_view event, std::initializer_list<Field> fields) override;

    struct Log;
    std::unique_ptr<Log> log_;
};

} // namespace sentrel::mac
