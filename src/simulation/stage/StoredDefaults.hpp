#pragma once

#include "ports/Journal.hpp"
#include "posix/PosixFileSystem.hpp"
#include "simulation/mac/SimulatedMac.hpp"
#include "simulation/mac/files/DefaultsFile.hpp"

namespace sentrel::simulation {

/// The user defaults on the simulated MacBook's disk, read while the product isn't running.
class StoredDefaults {
public:
    explicit StoredDefaults(SimulatedMac& mac)
        : file_(files_, silence_, mac.preferences(), mac.host.bundleIdentifier().value_or("Sentrel"))
    {
    }

    [[nodiscard]] ports::UserDefaults& get() { return file_; }

private:
    struct Silence final : ports::Journal {
        void write(std::string_view /*event*/, std::initializer_list<Field> /*fields*/) override {}
    };

    posix::PosixFileSystem files_;
    Silence silence_;
    DefaultsFile file_;
};

} // namespace sentrel::simulation
