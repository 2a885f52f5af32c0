#pragma once

#include "core/coordinator/AlarmCollaborators.hpp"

namespace sentrel {

/// A cloud that is not available.
class NoCloud final : public AlarmCloud {
public:
    [[nodiscard]] bool isAvailable() const override { return false; }
    [[nodiscard]] Async<bool> checkAvailability() override { co_return false; }
    [[nodiscard]] Async<void> upload(AlertEvent alert, std::optional<Bytes> photo) override;
};

/// A list that nobody looks at.
class NoAlertList final : public AlarmList {
public:
    [[nodiscard]] bool holds(const UUID& /*id*/) const override { return false; }
    void merge(const StoredAlert& /*stored*/) override {}
    void setICloudStorageIsFull(bool /*isFull*/) override {}
    void refreshStorageNotice() override {}
    [[nodiscard]] Async<void> refresh() override { co_return; }
};

/// A presence that nobody reads.
class NoPresence final : public AlarmPresence {
public:
    [[nodiscard]] Async<void> publishState() override { co_return; }
};

} // namespace sentrel
