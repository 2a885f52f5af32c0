#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>

namespace sentrel::ports {

/// Items of the preview panel (`QLPreviewPanelDataSource`). Main thread.
class PreviewDataSource {
public:
    virtual ~PreviewDataSource() = default;
    [[nodiscard]] virtual std::size_t numberOfItems() = 0;
    [[nodiscard]] virtual std::filesystem::path itemAt(std::size_t index) = 0;
};

/// The panel asks for control (`accepts`), then begins and ends it. Main thread.
struct PreviewPanelControl {
    std::function<bool()> accepts;
    std::function<void()> begin;
    std::function<void()> end;
};

/// The shared panel of Quick Look (`QLPreviewPanel`). Main thread.
class PreviewPanel {
public:
    virtual ~PreviewPanel() = default;

    virtual void setControl(PreviewPanelControl control) = 0;

    /// The panel doesn't own its source; null removes it.
    virtual void setDataSource(PreviewDataSource* source) = 0;

    virtual void reloadData() = 0;
    virtual void makeKeyAndOrderFront() = 0;
};

} // namespace sentrel::ports
