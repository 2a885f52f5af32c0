#pragma once

#include "simulation/stage/Action.hpp"
#include "simulation/stage/ValueReader.hpp"

namespace sentrel::simulation {

/// What a scenario says of the iCloud account and the cloud: a map, or in short the account alone. An account is the
/// name of a user or a word for its state; a plain word that is nearly such a word is refused, one in quotes is a name.
[[nodiscard]] ChangeCloud readCloud(const YamlValue& value, const ReadContext& context);

/// `up` or `down`.
[[nodiscard]] ChangeCloud readNetwork(const YamlValue& value);

/// A map, or in short `arm` or `disarm`.
[[nodiscard]] UsePhone readPhone(const YamlValue& value, const ReadContext& context);

/// `all`, `oldest` or `newest`.
[[nodiscard]] DeleteAlerts readDeleteAlerts(const YamlValue& value);

} // namespace sentrel::simulation
