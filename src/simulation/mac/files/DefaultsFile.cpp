#include "simulation/mac/files/DefaultsFile.hpp"

#include "ports/DurableFile.hpp"
#include "simulation/Events.hpp"
#include "simulation/mac/files/Base64.hpp"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <ranges>
#include <utility>

namespace sentrel::simulation {

namespace {

constexpr std::uint32_t folderMode = 0700;
constexpr std::uint32_t fileMode = 0600;

// Bytes; far beyond anything that an application keeps in its defaults.
constexpr std::size_t largestFile = std::size_t{16} << 20;

std::string fileName(std::string_view application)
{
    std::string name{application};
    std::ranges::replace_if(name, [](char c) { return c == '/' || c == '\0'; }, '_');
    return name + ".json";
}

bool isObject(BytesView content)
{
    const auto document = content.size() <= largestFile ? parseJson(content) : std::nullopt;
    return document && document->is_object();
}

} // namespace

DefaultsFile::DefaultsFile(ports::FileSystem& files, ports::Journal& journal, std::filesystem::path folder,
                           std::string_view application, FaultSwitches* faults)
    : faults_(faults),
      files_(files),
      journal_(journal),
      folder_(std::move(folder)),
      file_(folder_ / fileName(application)),
      isDamaged_(!load())
{
    if (isDamaged_) {
        journal_.note(events::DefaultsDamaged{file_.filename().native()});
    }
}

// False if a file exists that can't be read.
bool DefaultsFile::load()
{
    const auto content = files_.read(file_);
    if (!content) {
        return !files_.exists(file_);
    }
    if (!isObject(*content)) {
        return false;
    }
    members_ = splitJsonObject(textOf(*content));
    return true;
}

void DefaultsFile::begin(std::string_view operation)
{
    if (faults_ != nullptr) {
        faults_->call(operation);
    }
}

// The last of several entries with one name counts, as for most JSON readers.
DefaultsFile::Members::reverse_iterator DefaultsFile::find(const std::string& key)
{
    return std::ranges::find_if(std::views::reverse(members_),
                                [&](const JsonMember& member) { return member.key == key; });
}

std::optional<Json> DefaultsFile::value(const std::string& key)
{
    const std::lock_guard guard{mutex_};
    const auto found = find(key);
    if (found == members_.rend()) {
        return std::nullopt;
    }
    return parseJson(bytesOf(found->value)); // as the whole file was read: a number too large is null
}

std::optional<std::string> DefaultsFile::text(const std::string& key)
{
    begin("text");
    const auto found = value(key);
    return found && found->is_string() ? std::optional{found->get<std::string>()} : std::nullopt;
}

std::optional<std::vector<std::string>> DefaultsFile::texts(const std::string& key)
{
    begin("texts");
    const auto found = value(key);
    const auto isText = [](const Json& element) { return element.is_string(); };
    if (!found || !found->is_array() || !std::all_of(found->begin(), found->end(), isText)) {
        return std::nullopt;
    }
    return found->get<std::vector<std::string>>();
}

std::optional<std::int64_t> DefaultsFile::integer(const std::string& key)
{
    begin("integer");
    const auto found = value(key);
    const bool isInteger = found && found->is_number_integer();
    if (!isInteger || (found->is_number_unsigned() && found->get<std::uint64_t>() > INT64_MAX)) {
        return std::nullopt;
    }
    return found->get<std::int64_t>();
}

std::optional<Bytes> DefaultsFile::data(const std::string& key)
{
    begin("data");
    const auto found = value(key);
    return found && found->is_string() ? bytesOfBase64(found->get<std::string>()) : std::nullopt;
}

void DefaultsFile::setData(const std::string& key, BytesView value)
{
    begin("setData");
    set(key, Json(base64Text(value)));
}

void DefaultsFile::setText(const std::string& key, const std::string& value)
{
    begin("setText");
    set(key, Json(value));
}

void DefaultsFile::setTexts(const std::string& key, const std::vector<std::string>& value)
{
    begin("setTexts");
    set(key, Json(value));
}

void DefaultsFile::setInteger(const std::string& key, std::int64_t value)
{
    begin("setInteger");
    set(key, Json(value));
}

void DefaultsFile::set(const std::string& key, const Json& value)
{
    const std::string encoded = encodeJson(value);
    replace(key, &encoded);
}

void DefaultsFile::remove(const std::string& key)
{
    begin("remove");
    replace(key, nullptr);
}

// Null removes the entry.
void DefaultsFile::replace(const std::string& key, const std::string* value)
{
    int error = 0;
    {
        const std::lock_guard guard{mutex_};
        const auto found = find(key);
        const bool isThere = found != members_.rend();
        if (!isUnwritten_ && (value == nullptr ? !isThere : isThere && found->value == *value)) {
            return; // the file has this value already
        }
        if (value == nullptr) {
            std::erase_if(members_, [&](const JsonMember& member) { return member.key == key; });
        } else if (isThere) {
            found->value = *value;
        } else {
            members_.push_back({key, *value});
        }
        error = write();
        isUnwritten_ = error != 0;
    }
    if (error != 0) {
        // The change stays in memory and is written with the next one.
        journal_.note(events::DefaultsWriteFailed{file_.filename().native(), error});
    }
}

int DefaultsFile::write()
{
    const PortCalls::DeviceScope scope;
    files_.createDirectories(folder_, folderMode);
    if (isDamaged_) {
        const int error = putDamagedAside();
        if (error != 0) {
            return error;
        }
        isDamaged_ = false;
    }
    return ports::writeDurably(files_, file_, bytesOf(joinJsonObject(members_)), fileMode);
}

int DefaultsFile::putDamagedAside()
{
    std::filesystem::path aside = file_;
    aside += ".damaged";
    // Earlier damaged files are kept.
    for (int number = 2; files_.exists(aside); ++number) {
        aside = file_;
        aside += ".damaged-" + std::to_string(number);
    }
    return files_.rename(file_, aside);
}

} // namespace sentrel::simulation
