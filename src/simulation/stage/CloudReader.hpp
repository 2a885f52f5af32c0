#pragma once

#include "simulation/stage/Action.hpp"
#include "simulation/stage/ValueReader.hpp"

namespace sentrel::simulation {

/// Reads a change of the iCloud account and the cloud: a map, or for short the account alone. An account is a user's
/// name or a word for its state. A plain word close to such a word is refused; a quoted one is a name.
[[nodiscard]] ChangeCloud readCloud(const YamlValue& value, const ReadContext& context);

/// `up` or `down`.
[[nodiscard]] ChangeCloud readNetwork(const YamlValue& value);

/// A map, or for short `arm` or `disarm`.
[[nodiscard]] UsePhone readPhone(const YamlValue& value, const ReadContext& context);

/// `all`, `oldest` or `newest`.
[[nodiscard]] DeleteAlerts readDeleteAlerts(const YamlValue& value);

} // namespace sentrel::simulation
