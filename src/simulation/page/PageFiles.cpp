#include "simulation/page/PageFiles.hpp"

#include "simulation/mac/sound/WavHeader.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string_view>
#include <utility>

namespace sentrel::simulation {

namespace {

constexpr std::size_t mostBytes = std::size_t{12} << 20;
constexpr std::uint32_t sampleRate = 44'100;

/// FNV-1a: names must differ, but aren't secret.
std::string nameOf(BytesView content, std::string_view extension)
{
    std::uint64_t hash = 14695981039346656037ULL;
    for (const std::uint8_t byte : content) {
        hash = (hash ^ byte) * 1099511628211ULL;
    }
    std::array<char, 24> text{};
    std::snprintf(text.data(), text.size(), "%016llx", static_cast<unsigned long long>(hash));
    return std::string{text.data()} + std::string{extension};
}

/// The samples as a WAV file: 16 bits, one channel.
Bytes wavOf(const std::vector<float>& samples)
{
    const auto header = WavHeader{sampleRate, 16, static_cast<std::uint32_t>(samples.size() * 2)}.bytes();
    Bytes wav{header.begin(), header.end()};
    wav.reserve(header.size() + samples.size() * 2);
    for (const float sample : samples) {
        const auto value = static_cast<std::int16_t>(std::lround(std::clamp(sample, -1.0F, 1.0F) * 32767.0F));
        wav.push_back(static_cast<std::uint8_t>(value));
        wav.push_back(static_cast<std::uint8_t>(static_cast<std::uint16_t>(value) >> 8));
    }
    return wav;
}

} // namespace

std::string PageFiles::addImage(std::shared_ptr<const Bytes> jpeg)
{
    {
        const std::lock_guard guard{mutex_};
        const auto found = known_.find(jpeg.get());
        if (found != known_.end() && !found->second.first.expired() && files_.contains(found->second.second)) {
            return "/api/file/" + found->second.second;
        }
    }
    const std::string name = nameOf(*jpeg, ".jpg");
    const std::weak_ptr<const void> weak = jpeg;
    const void* const address = jpeg.get();
    std::string url = add(name, {std::move(jpeg), "image/jpeg"});
    const std::lock_guard guard{mutex_};
    std::erase_if(known_, [](const auto& entry) { return entry.second.first.expired(); });
    known_.insert_or_assign(address, std::pair{weak, name});
    return url;
}

std::string PageFiles::addSound(const std::shared_ptr<const std::vector<float>>& samples)
{
    {
        const std::lock_guard guard{mutex_};
        const auto found = known_.find(samples.get());
        if (found != known_.end() && !found->second.first.expired() && files_.contains(found->second.second)) {
            return "/api/file/" + found->second.second;
        }
    }
    auto wav = std::make_shared<const Bytes>(wavOf(*samples));
    const std::string name = nameOf(*wav, ".wav");
    std::string url = add(name, {std::move(wav), "audio/wav"});
    const std::lock_guard guard{mutex_};
    known_.insert_or_assign(samples.get(), std::pair{std::weak_ptr<const void>{samples}, name});
    return url;
}

std::optional<PageFiles::File> PageFiles::find(std::string_view name) const
{
    const std::lock_guard guard{mutex_};
    const auto found = files_.find(name);
    return found == files_.end() ? std::nullopt : std::optional{found->second};
}

std::string PageFiles::add(std::string name, File file)
{
    const std::lock_guard guard{mutex_};
    const std::size_t size = file.content->size();
    if (files_.emplace(name, std::move(file)).second) {
        order_.push_back(name);
        bytes_ += size;
    }
    while (bytes_ > mostBytes && order_.size() > 1) {
        const auto oldest = files_.find(order_.front());
        bytes_ -= oldest->second.content->size();
        files_.erase(oldest);
        order_.pop_front();
    }
    return "/api/file/" + name;
}

} // namespace sentrel::simulation
