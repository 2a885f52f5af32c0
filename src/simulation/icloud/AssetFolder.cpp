#include "simulation/icloud/AssetFolder.hpp"

#include "simulation/icloud/CloudErrorNames.hpp"

#include <string>
#include <system_error>
#include <utility>

namespace sentrel::simulation {

AssetFolder::AssetFolder(std::filesystem::path folder) : folder_(std::move(folder))
{
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

ServerRecord AssetFolder::uploaded(const ports::CloudRecord& record)
{
    ServerRecord made{record.type, record.name, {}, std::string{textOf(record.systemFields)}, {}};
    for (const auto& [name, value] : record.fields) {
        const auto keep = [&, &field = name](const auto& content) {
            if constexpr (std::is_same_v<std::decay_t<decltype(content)>, ports::CloudAsset>) {
                auto bytes = files_.read(content.file);
                if (!bytes) {
                    throw cloudError(CKError::assetFileNotFound);
                }
                made.fields.emplace(field, std::move(*bytes));
            } else {
                made.fields.emplace(field, content);
            }
        };
        std::visit(keep, value);
    }
    return made;
}

ports::CloudRecord AssetFolder::downloaded(ServerRecord record)
{
    ports::CloudRecord made{
        std::move(record.type), std::move(record.name), {}, bytesOf(record.tag), record.modificationDate};
    for (auto& [name, value] : record.fields) {
        const auto keep = [&, &field = name](auto& content) {
            if constexpr (std::is_same_v<std::decay_t<decltype(content)>, Bytes>) {
                made.fields.emplace(field, write(content));
            } else {
                made.fields.emplace(field, std::move(content));
            }
        };
        std::visit(keep, value);
    }
    return made;
}

ports::CloudRecordResult AssetFolder::downloaded(ServerRecordResult result)
{
    if (const auto* const error = std::get_if<ports::CloudError>(&result)) {
        return *error;
    }
    return downloaded(std::get<ServerRecord>(std::move(result)));
}

ports::CloudAsset AssetFolder::write(const Bytes& content)
{
    constexpr std::uint32_t ownersFolder = 0700;
    constexpr std::uint32_t ownersFile = 0600;
    files_.createDirectories(folder_, ownersFolder);
    const std::filesystem::path path = folder_ / (std::to_string(++written_) + ".asset");
    int error = 0;
    const auto file = files_.create(path, ownersFile, error);
    if (file == nullptr || file->write(content) != 0) {
        throw cloudError(CKError::assetNotAvailable);
    }
    return {path};
}

} // namespace sentrel::simulation
