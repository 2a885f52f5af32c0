#pragma once

#include "foundation/Bytes.hpp"
#include "foundation/Json.hpp"

#include <map>
#include <memory>
#include <string>

namespace sentrel::simulator {

class MacSession;
class PageFiles;

/// What the page shows, room by room (see web/PROTOCOL.md). On the world's thread.
class PageState {
public:
    PageState(MacSession& session, PageFiles& files, std::string title)
        : session_(session), files_(files), title_(std::move(title))
    {
    }

    [[nodiscard]] Json run() const;
    [[nodiscard]] Json menuBar();
    [[nodiscard]] Json screen();
    [[nodiscard]] Json panels();
    [[nodiscard]] Json hardware() const;
    [[nodiscard]] Json sound();
    [[nodiscard]] Json cloud() const;
    [[nodiscard]] Json phone();

private:
    [[nodiscard]] std::string photoUrl(const std::string& alert, std::shared_ptr<const Bytes> photo);

    MacSession& session_;
    PageFiles& files_;
    std::string title_;
    std::map<std::string, std::shared_ptr<const Bytes>> phonePhotos_; // by alert
};

} // namespace sentrel::simulator
