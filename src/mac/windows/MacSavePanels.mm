#include "mac/windows/MacSavePanels.hpp"

#include "mac/foundation/FoundationText.hpp"
#include "mac/windows/ModalPanels.hpp"

#import <AppKit/AppKit.h>
#import <UniformTypeIdentifiers/UniformTypeIdentifiers.h>

namespace sentrel::mac {

namespace {

class Panel {
public:
    explicit Panel(const ports::SavePanelContent& content)
    {
        NSMutableArray<UTType*>* const types = [NSMutableArray array];
        for (const std::string& identifier : content.allowedContentTypes) {
            UTType* const type = [UTType typeWithIdentifier:stringObject(identifier)];
            if (type != nil) {
                [types addObject:type];
            }
        }
        panel_.title = stringObject(content.title);
        // Save panels have no title bar; the message shows the title instead.
        panel_.message = panel_.title;
        panel_.allowedContentTypes = types;
        panel_.nameFieldStringValue = stringObject(content.nameFieldStringValue);
    }

    [[nodiscard]] ModalPanel modal() const
    {
        NSSavePanel* const panel = panel_;
        return {[panel]() -> std::int64_t { return [panel runModal]; }, [panel] { [panel cancel:nil]; }};
    }

    [[nodiscard]] std::optional<std::filesystem::path> chosen() const
    {
        return panel_.URL == nil ? std::nullopt : std::optional{pathOf(panel_.URL)};
    }

private:
    NSSavePanel* const panel_ = [NSSavePanel savePanel];
};

} // namespace

Async<std::optional<std::filesystem::path>> MacSavePanels::run(ports::SavePanelContent content)
{
    const Panel panel{content};
    const std::int64_t response = co_await runModally(panel.modal());
    if (response != NSModalResponseOK) {
        co_return std::nullopt;
    }
    co_return panel.chosen();
}

} // namespace sentrel::mac
