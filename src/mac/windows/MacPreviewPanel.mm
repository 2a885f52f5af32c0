#include "mac/windows/MacPreviewPanel.hpp"

#include "mac/foundation/FoundationText.hpp"

/// Gives the panel the product's items.
@interface SentrelPreviewSource : NSObject <QLPreviewPanelDataSource> {
@public
    sentrel::ports::PreviewDataSource* offered; ///< null: nothing
}
@end

@implementation SentrelPreviewSource

- (NSInteger)numberOfPreviewItemsInPreviewPanel:(QLPreviewPanel*)panel
{
    return offered == nullptr ? 0 : static_cast<NSInteger>(offered->numberOfItems());
}

- (id<QLPreviewItem>)previewPanel:(QLPreviewPanel*)panel previewItemAtIndex:(NSInteger)index
{
    if (offered == nullptr || index < 0 || static_cast<std::size_t>(index) >= offered->numberOfItems()) {
        return nil;
    }
    const auto file = offered->itemAt(static_cast<std::size_t>(index));
    return [NSURL fileURLWithPath:sentrel::mac::stringObject(file.native()) isDirectory:NO];
}

@end

namespace sentrel::mac {

MacPreviewPanel::MacPreviewPanel() : source_([[SentrelPreviewSource alloc] init])
{
}

MacPreviewPanel::~MacPreviewPanel()
{
    source_->offered = nullptr;
    controlled_.dataSource = nil;
}

void MacPreviewPanel::setDataSource(ports::PreviewDataSource* source)
{
    source_->offered = source;
    controlled_.dataSource = source == nullptr ? nil : source_;
}

void MacPreviewPanel::reloadData()
{
    [controlled_ reloadData];
}

void MacPreviewPanel::makeKeyAndOrderFront()
{
    [QLPreviewPanel.sharedPreviewPanel makeKeyAndOrderFront:nil];
}

bool MacPreviewPanel::accepts()
{
    const auto asked = control_.accepts;
    return asked && asked();
}

void MacPreviewPanel::begin(QLPreviewPanel* panel)
{
    controlled_ = panel;
    if (const auto told = control_.begin) {
        told();
    }
    if (source_->offered != nullptr) {
        panel.dataSource = source_;
    }
}

void MacPreviewPanel::end(QLPreviewPanel* panel)
{
    if (const auto told = control_.end) {
        told();
    }
    panel.dataSource = nil;
    controlled_ = nil;
}

} // namespace sentrel::mac
