#include "mac/windows/WindowAttachments.hpp"

#include "ui/Node.hpp"

#include <utility>
#include <vector>

namespace sentrel::mac {

void WindowAttachments::show(NSWindow* window, const ui::View& content)
{
    auto before = std::exchange(overlays_, {});
    const std::vector<ui::Attachment> attachments = ui::attachmentsOf(content);
    std::vector<ui::Attachment> toolbars;
    for (const ui::Attachment& attachment : attachments) {
        if (ui::elementOf<ui::Toolbar>(*attachment.view) != nullptr) {
            toolbars.push_back(attachment);
            continue;
        }
        auto overlay = std::move(before[attachment.identity]);
        if (overlay == nullptr || !overlay->suits(*attachment.view)) {
            overlay = ui::elementOf<ui::Sheet>(*attachment.view) != nullptr ? makeSheet() : makeDialog();
        }
        overlays_[attachment.identity] = std::move(overlay);
    }
    // Old overlays end before new ones begin.
    before.clear();
    for (const ui::Attachment& attachment : attachments) {
        const auto overlay = overlays_.find(attachment.identity);
        if (overlay != overlays_.end()) {
            overlay->second->show(window.isVisible ? window : nil, *attachment.view);
        }
    }
    if (toolbar_ == nullptr && !toolbars.empty()) {
        toolbar_ = std::make_unique<WindowToolbar>();
    }
    if (toolbar_ != nullptr) {
        toolbar_->show(window, toolbars);
    }
}

} // namespace sentrel::mac
