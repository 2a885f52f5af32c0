#include "simulation/mac/files/DefaultsFile.hpp"

#include "ports/DurableFile.hpp"
#include "simulation/Events.hpp"
#include "simulation/mac/files/Base64.hpp"

#include <algorithm>
#include <utility>

namespace sentrel::simulation {

namespace {

constexpr std::uint32_t folderMode = 0700;
constexpr std::uint32_t fileMode = 0600;

// Bytes; far beyond anything that an application keeps in its defaults.
constexpr std::size_t largestFile = std::size_t{16} << 20;

/// A fraction never equals a whole number: they are of different types to the reader.
bool isEqual(const Json& left, const Json& right)
{
    return left.is_number_float() == right.is_number_float() && left == right;
}

} // namespace

DefaultsFile::DefaultsFile(ports::FileSystem& files, ports::Journal& journal, std::filesystem::path folder,
                           std::string_view application, FaultSwitches* faults)
    : faults_(faults),
      files_(files),
      journal_(journal),
      folder_(std::move(folder)),
      file_(folder_ / (std::string{application} + ".json")),
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
    auto document = content->size() <= largestFile ? parseJson(*content) : std::nullopt;
    if (!document || !document->is_object()) {
        return false;
    }
    contents_ = *std::move(document);
    return true;
}

void DefaultsFile::begin(std::string_view operation)
{
    if (faults_ != nullptr) {
        faults_->call(operation);
    }
}

std::optional<Json> DefaultsFile::value(const std::string& key)
{
    const std::lock_guard guard{mutex_};
    const Json* const found = member(contents_, key);
    return found == nullptr ? std::nullopt : std::optional{*found};
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
    replace(key, &value);
}

void DefaultsFile::remove(const std::string& key)
{
    begin("remove");
    replace(key, nullptr);
}

// Null removes the entry.
void DefaultsFile::replace(const std::string& key, const Json* value)
{
    int error = 0;
    {
        const std::lock_guard guard{mutex_};
        const Json* const found = member(contents_, key);
        const bool isSame = value == nullptr ? found == nullptr : found != nullptr && isEqual(*found, *value);
        if (isSame && !isUnwritten_) {
            return; // the file has this value already
        }
        if (value == nullptr) {
            contents_.erase(key);
        } else {
            contents_[key] = *value;
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
    const std::string text = contents_.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
    return ports::writeDurably(files_, file_, bytesOf(text), fileMode);
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
