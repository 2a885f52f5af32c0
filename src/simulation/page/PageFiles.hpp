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

/// The photos and sounds that the page fetches. Each gets a name by its content, so that a name never changes what it
/// means. The latest are kept, up to a total size. Any thread.
class PageFiles {
public:
    struct File {
        std::shared_ptr<const Bytes> content;
        const char* type = "";
    };

    /// What an image is fetched by. An image that is no JPEG is served all the same; browsers don't guess.
    [[nodiscard]] std::string addImage(std::shared_ptr<const Bytes> jpeg);

    /// What samples at 44.1 kHz are fetched by, as a WAV file.
    [[nodiscard]] std::string addSound(const std::shared_ptr<const std::vector<float>>& samples);

    /// The file of this name; none when it never was or is gone.
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
