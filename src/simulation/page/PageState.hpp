#pragma once

#include "foundation/Bytes.hpp"
#include "foundation/Json.hpp"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace sentrel::simulation {
struct WindowState;
}

namespace sentrel::simulation {

class MacSession;
class PageFiles;

/// The state that the page shows, room by room (see web/PROTOCOL.md), as JSON or its text. World's thread only.
class PageState {
public:
    /// JSON text, shared because window contents may be long.
    using Text = std::shared_ptr<const std::string>;

    /// Prefix of the rooms of `contents`.
    static constexpr std::string_view contentPrefix = "content-";

    PageState(MacSession& session, PageFiles& files, std::string title)
        : session_(session), files_(files), title_(std::move(title))
    {
    }

    [[nodiscard]] Json run() const;
    [[nodiscard]] Json menuBar();
    [[nodiscard]] Json screen();
    /// Contents of the screen's windows and covers, by room. An unchanged content keeps the same text object.
    [[nodiscard]] std::map<std::string, Text> contents();
    [[nodiscard]] Json panels();
    [[nodiscard]] Json hardware();
    [[nodiscard]] Json sound();
    [[nodiscard]] Json cloud() const;
    /// Null while the server doesn't let the phone read.
    [[nodiscard]] Json phone();

    /// Call for a new page, which fetches all images anew: also adds those of unchanged windows to the files again.
    void redraw() { drawn_.clear(); }

    /// Height in points of the first display, from whose top the page counts.
    [[nodiscard]] static double displayHeight(MacSession& session);

    /// The JSON text of a value; invalid UTF-8 is replaced.
    [[nodiscard]] static std::string textOf(const Json& value);

private:
    /// A window's content, cached: a long list is serialised once, not at each change elsewhere.
    struct Drawn {
        std::uint64_t version = 0;
        Text content;
    };

    [[nodiscard]] std::string photoUrl(const std::string& alert, const std::shared_ptr<const Bytes>& photo);

    MacSession& session_;
    PageFiles& files_;
    std::string title_;
    std::map<std::string, std::shared_ptr<const Bytes>> phonePhotos_; // by alert
    std::map<std::uint64_t, Drawn> drawn_;                            // by the window's number
};

} // namespace sentrel::simulation
