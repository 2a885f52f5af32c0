#pragma once

#include "ports/PreviewPanel.hpp"

#import <QuickLookUI/QuickLookUI.h>

@class SentrelPreviewSource;

namespace sentrel::mac {

/// The shared panel of Quick Look. It takes a data source only from its controller: a source set earlier waits until
/// the application has control.
class MacPreviewPanel final : public ports::PreviewPanel {
public:
    MacPreviewPanel();
    ~MacPreviewPanel() override;
    MacPreviewPanel(const MacPreviewPanel&) = delete;
    MacPreviewPanel& operator=(const MacPreviewPanel&) = delete;

    void setControl(ports::PreviewPanelControl control) override { control_ = std::move(control); }
    void setDataSource(ports::PreviewDataSource* source) override;
    void reloadData() override;
    void makeKeyAndOrderFront() override;

    /// Called by the application's delegate.
    [[nodiscard]] bool accepts();
    void begin(QLPreviewPanel* panel);
    void end(QLPreviewPanel* panel);

private:
    ports::PreviewPanelControl control_;
    SentrelPreviewSource* const source_;
    QLPreviewPanel* controlled_ = nil; // while the application has control
};

} // namespace sentrel::mac
