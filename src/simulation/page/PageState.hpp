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

/// What the page shows, room by room (see web/PROTOCOL.md), as JSON or its text. On the world's thread.
class PageState {
public:
    /// JSON, kept by whoever needs it: what a window shows may be long.
    using Text = std::shared_ptr<const std::string>;

    /// How the rooms of `contents` begin.
    static constexpr std::string_view contentPrefix = "content-";

    PageState(MacSession& session, PageFiles& files, std::string title)
        : session_(session), files_(files), title_(std::move(title))
    {
    }

    [[nodiscard]] Json run() const;
    [[nodiscard]] Json menuBar();
    [[nodiscard]] Json screen();
    /// What the screen's windows and covers show, by the rooms that they name: the same text as long as it is
    /// unchanged.
    [[nodiscard]] std::map<std::string, Text> contents();
    [[nodiscard]] Json panels();
    [[nodiscard]] Json hardware();
    /// The distance from rest in g that sets off the alarm; none while motion does not.
    [[nodiscard]] std::optional<double> motionThreshold() const;
    [[nodiscard]] Json sound();
    [[nodiscard]] Json cloud() const;
    [[nodiscard]] Json phone();

    /// For a new page, which fetches all images anew: those of windows that have long stood unchanged are kept again.
    void redraw() { drawn_.clear(); }

    /// The text of a value; what is no UTF-8 in it is replaced.
    [[nodiscard]] static std::string textOf(const Json& value);

private:
    /// What a window shows. A long list is written once, not at each change elsewhere.
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
