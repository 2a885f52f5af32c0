#pragma once

#include "ports/Cryptography.hpp"
#include "ports/Keychain.hpp"
#include "ports/LoginAuthentication.hpp"
#include "ports/Random.hpp"

#include <memory>

// Keychain, login, keys and random numbers.

namespace sentrel::mac {

[[nodiscard]] std::unique_ptr<ports::Cryptography> makeCryptography();
[[nodiscard]] std::unique_ptr<ports::Random> makeRandom();
[[nodiscard]] std::unique_ptr<ports::GeneralRandom> makeGeneralRandom();
[[nodiscard]] std::unique_ptr<ports::Keychain> makeKeychain();
[[nodiscard]] std::unique_ptr<ports::LoginAuthentication> makeLoginAuthentication();

} // namespace sentrel::mac
