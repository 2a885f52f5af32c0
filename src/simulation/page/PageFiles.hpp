#pragma once

#include "foundation/Bytes.hpp"

#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel::simulation {

/// The photos and sounds that the page fetches. Names derive from the content, so that a name never changes its
/// meaning. The latest files are kept, up to a total size. Any thread.
class PageFiles {
public:
    struct File {
        std::shared_ptr<const Bytes> content;
        const char* type = "";
    };

    /// Adds an image; returns its URL. Images that aren't JPEG are served too, under JPEG's type; browsers don't guess.
    [[nodiscard]] std::string addImage(std::shared_ptr<const Bytes> jpeg);

    /// Adds samples at 44.1 kHz as a WAV file; returns its URL.
    [[nodiscard]] std::string addSound(const std::shared_ptr<const std::vector<float>>& samples);

    /// The file of this name; none if it was never added or is no longer kept.
    [[nodiscard]] std::optional<File> find(std::string_view name) const;

private:
    std::string add(std::string name, File file);

    mutable std::mutex mutex_;
    std::map<std::string, File, std::less<>> files_;
    std::deque<std::string> order_;
    std::size_t bytes_ = 0;
    std::map<const void*, std::pair<std::weak_ptr<const void>, std::string>> known_;
};

} // namespace sentrel::simulation
