#include "simulation/mac/files/UnsettledWrites.hpp"

#include <ranges>
#include <utility>

namespace sentrel::simulation {

namespace {

// Writes on behalf of the medium; a failure shows in later reads.
void put(ports::FileSystem& disk, const std::filesystem::path& file, BytesView content)
{
    constexpr std::uint32_t ownerOnly = 0600;
    int error = 0;
    if (const auto open = disk.create(file, ownerOnly, error)) {
        (void)open->write(content);
    }
}

} // namespace

void UnsettledWrites::removed(const std::filesystem::path& file)
{
    unwritten_.erase(file);
    std::erase_if(renames_, [&](const Rename& rename) { return rename.to == file; });
}

void UnsettledWrites::renamed(const std::filesystem::path& from, const std::filesystem::path& to,
                              std::optional<Bytes> replaced)
{
    unwritten_.erase(to);
    if (unwritten_.erase(from) != 0) {
        unwritten_.insert(to);
        return;
    }
    renames_.push_back({from, to, std::move(replaced)});
}

void UnsettledWrites::synchronizedDirectory(const std::filesystem::path& directory)
{
    std::erase_if(renames_, [&](const Rename& rename) { return rename.to.parent_path() == directory; });
}

void UnsettledWrites::lose(ports::FileSystem& disk)
{
    for (const std::filesystem::path& file : unwritten_) {
        if (const auto content = disk.read(file)) {
            put(disk, file, BytesView{*content}.first(content->size() / 2));
        }
    }
    for (const auto& rename : std::views::reverse(renames_)) {
        (void)disk.rename(rename.to, rename.from);
        if (rename.replaced) {
            put(disk, rename.to, *rename.replaced);
        }
    }
    unwritten_.clear();
    renames_.clear();
}

} // namespace sentrel::simulation
