#pragma once

#include "ports/Cryptography.hpp"
#include "simulation/FaultSwitches.hpp"

#include <memory>

struct evp_md_st;

namespace sentrel::simulation {

/// Key derivation and digests by OpenSSL, answering as the system's own functions do. Any thread.
class OpenSslCryptography final : public ports::Cryptography {
public:
    OpenSslCryptography();

    [[nodiscard]] std::int32_t deriveKey(std::uint32_t algorithm, BytesView password, BytesView salt,
                                         std::uint32_t pseudoRandomFunction, std::uint32_t rounds,
                                         std::span<std::uint8_t> key) override;
    [[nodiscard]] std::unique_ptr<ports::Sha256Context> makeSha256Context() override;

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    FaultSwitches faults_{};
    // Looked up once: the library searches its providers each time.
    std::shared_ptr<evp_md_st> sha256_;
};

} // namespace sentrel::simulation
