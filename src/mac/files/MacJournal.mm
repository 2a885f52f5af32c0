#include "mac/Adapters.hpp"

#include <nlohmann/json.hpp>

#include <string>

#include <os/log.h>

namespace sentrel::mac {

namespace {

using OrderedJson = nlohmann::ordered_json;

struct ToJson {
    OrderedJson operator()(std::monostate) const { return nullptr; }
    OrderedJson operator()(auto value) const { return value; }
};

/// The unified log, under the product's own subsystem. Each event is one public line: its name, then its fields as
/// JSON.
class MacJournal final : public ports::Journal {
    void write(std::string_view event, std::initializer_list<Field> fields) override
    {
        OrderedJson object = OrderedJson::object();
        for (const auto& [name, value] : fields) {
            object[std::string{name}] = std::visit(ToJson{}, value);
        }
        std::string line{event};
        line += ' ';
        line += object.dump(-1, ' ', false, OrderedJson::error_handler_t::replace);
        os_log(log_, "%{public}s", line.c_str());
    }

    const os_log_t log_ = os_log_create("pelma.Sentrel", "journal");
};

} // namespace

std::unique_ptr<ports::Journal> makeJournal()
{
    return std::make_unique<MacJournal>();
}

} // namespace sentrel::mac
