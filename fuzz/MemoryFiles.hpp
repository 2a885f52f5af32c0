#pragma once

#include "ports/FileSystem.hpp"

#include <cerrno>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace sentrel::fuzz {

/// Files without a disk.
class MemoryFiles final : public ports::FileSystem {
public:
    std::map<std::filesystem::path, Bytes> contents;

    int createDirectories(const std::filesystem::path& /*directory*/, std::uint32_t /*mode*/) override { return 0; }
    [[nodiscard]] std::optional<std::vector<std::string>> list(const std::filesystem::path& directory) override
    {
        std::vector<std::string> names;
        for (const auto& [file, content] : contents) {
            if (file.parent_path() == directory) {
                names.push_back(file.filename().string());
            }
        }
        return names;
    }
    [[nodiscard]] std::optional<Bytes> read(const std::filesystem::path& file) override
    {
        const auto found = contents.find(file);
        return found != contents.end() ? std::optional{found->second} : std::nullopt;
    }
    [[nodiscard]] bool exists(const std::filesystem::path& file) override { return contents.contains(file); }
    [[nodiscard]] std::unique_ptr<ports::WritableFile>
    create(const std::filesystem::path& file, std::optional<std::uint32_t> /*mode*/, int& /*error*/) override
    {
        Bytes& content = contents[file];
        content.clear();
        return std::make_unique<OpenFile>(content);
    }
    [[nodiscard]] int rename(const std::filesystem::path& from, const std::filesystem::path& to) override
    {
        const auto found = contents.find(from);
        if (found == contents.end()) {
            return ENOENT;
        }
        Bytes content = std::move(found->second);
        contents.erase(found);
        contents[to] = std::move(content);
        return 0;
    }
    [[nodiscard]] int synchronizeDirectory(const std::filesystem::path& /*directory*/) override { return 0; }
    int remove(const std::filesystem::path& file) override { return contents.erase(file) > 0 ? 0 : ENOENT; }

private:
    class OpenFile final : public ports::WritableFile {
    public:
        explicit OpenFile(Bytes& content) : content_(content) {}
        [[nodiscard]] int write(BytesView bytes) override
        {
            content_.insert(content_.end(), bytes.begin(), bytes.end());
            return 0;
        }
        [[nodiscard]] int synchronize() override { return 0; }

    private:
        Bytes& content_;
    };
};

} // namespace sentrel::fuzz
