#pragma once

#include "platform/Journal.hpp"
#include "platform/posix/PosixFileSystem.hpp"
#include "platform/simulated/DefaultsFile.hpp"
#include "platform/simulated/SimulatedMac.hpp"

namespace sentrel::simulator {

/// The user defaults as they lie on the simulated MacBook's disk, read past a product that doesn't run.
class StoredDefaults {
public:
    explicit StoredDefaults(simulated::SimulatedMac& mac)
        : file_(files_, silence_, mac.preferences(), mac.host.bundleIdentifier().value_or("Sentrel"))
    {
    }

    [[nodiscard]] platform::UserDefaults& get() { return file_; }

private:
    struct Silence final : platform::Journal {
        void write(std::string_view /*event*/, std::initializer_list<Field> /*fields*/) override {}
    };

    posix::PosixFileSystem files_;
    Silence silence_;
    simulated::DefaultsFile file_;
};

} // namespace sentrel::simulator
