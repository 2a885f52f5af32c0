#pragma once

#include "ports/PreviewPanel.hpp"
#include "simulation/FaultSwitches.hpp"

#include <cstddef>
#include <filesystem>
#include <utility>
#include <vector>

namespace sentrel::ports {
class Journal;
}

namespace sentrel::simulation {

/// The shared panel of Quick Look. Opening it notes `preview.shown` {items}, closing it `preview.closed`. The
/// product's main thread.
class SimulatedPreviewPanel final : public ports::PreviewPanel {
public:
    explicit SimulatedPreviewPanel(ports::Journal& journal) : journal_(journal) {}

    void setControl(ports::PreviewPanelControl control) override { control_ = std::move(control); }
    void setDataSource(ports::PreviewDataSource* source) override;
    void reloadData() override;
    void makeKeyAndOrderFront() override;

    /// The person closes it; false when it isn't open.
    bool close();

    /// The process is gone: drops its control and data source.
    void end();

    [[nodiscard]] bool isVisible() const { return isVisible_; }

    /// The files shown; empty while it isn't open.
    [[nodiscard]] std::vector<std::filesystem::path> items() const;

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    FaultSwitches faults_{};
    ports::Journal& journal_;
    ports::PreviewPanelControl control_;
    ports::PreviewDataSource* source_ = nullptr;
    std::vector<std::filesystem::path> items_;
    bool isVisible_ = false;
    bool isControlled_ = false;
};

} // namespace sentrel::simulation
