#pragma once

#include "foundation/Bytes.hpp"
#include "foundation/Json.hpp"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace sentrel::simulated {
struct WindowState;
}

namespace sentrel::simulator {

class MacSession;
class PageFiles;

/// What the page shows, room by room (see web/PROTOCOL.md), as JSON or the text of it. On the world's thread.
class PageState {
public:
    PageState(MacSession& session, PageFiles& files, std::string title)
        : session_(session), files_(files), title_(std::move(title))
    {
    }

    [[nodiscard]] Json run() const;
    [[nodiscard]] Json menuBar();
    [[nodiscard]] std::string screen();
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
        std::string content;
    };

    [[nodiscard]] const std::string& contentOf(const simulated::WindowState& window);
    [[nodiscard]] std::string photoUrl(const std::string& alert, std::shared_ptr<const Bytes> photo);

    MacSession& session_;
    PageFiles& files_;
    std::string title_;
    std::map<std::string, std::shared_ptr<const Bytes>> phonePhotos_; // by alert
    std::map<std::uint64_t, Drawn> drawn_;                            // by the window's number
};

} // namespace sentrel::simulator
