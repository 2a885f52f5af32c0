#include "mac/files/MacJournal.hpp"

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

} // namespace

struct MacJournal::Log {
    os_log_t native = os_log_create("pelma.Sentrel", "journal");
};

MacJournal::MacJournal() : log_(std::make_unique<Log>())
{
}

MacJournal::~MacJournal() = default;

void MacJournal::write(std::string_view event, std::initializer_list<Field> fields)
{
    OrderedJson object = OrderedJson::object();
    for (const auto& [name, value] : fields) {
        object[std::string{name}] = std::visit(ToJson{}, value);
    }
    std::string line{event};
    line += ' ';
    line += object.dump(-1, ' ', false, OrderedJson::error_handler_t::replace);
    os_log(log_->native, "%{public}s", line.c_str());
}

} // namespace sentrel::mac
