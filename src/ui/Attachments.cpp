#include "ui/Attachments.hpp"

#include "ui/Node.hpp"

namespace sentrel::ui {

namespace {

/// The path to a view. Most trees have many views and few attachments: only attachments get identities.
struct Way {
    const Way* outer = nullptr;
    const View* view = nullptr;
    std::size_t index = 0;
};

std::string identityOf(const Way& way)
{
    if (way.outer == nullptr) {
        return {};
    }
    return identityInside(identityOf(*way.outer), stepOf(*way.view, way.index));
}

void walk(const Way& way, bool isEnabled, std::vector<Attachment>& found)
{
    const View& view = *way.view;
    if (view.traits.isHidden) {
        return;
    }
    isEnabled = isEnabled && !view.traits.isDisabled;
    for (std::size_t index = 0; index < view.children.size(); ++index) {
        walk({&way, &view.children[index], index}, isEnabled, found);
    }
    for (const View& attachment : view.attachments) {
        if (!attachment.traits.isHidden) {
            found.push_back({identityInside(identityOf(way), stepOfAttachment(attachment)), &attachment,
                             isEnabled && !attachment.traits.isDisabled});
        }
    }
}

} // namespace

std::vector<Attachment> attachmentsOf(const View& root)
{
    std::vector<Attachment> found;
    walk({nullptr, &root, 0}, true, found);
    return found;
}

} // namespace sentrel::ui
