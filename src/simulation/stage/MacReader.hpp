#pragma once

#include "simulation/mac/MacDescription.hpp"
#include "simulation/stage/ValueReader.hpp"

namespace sentrel::simulation {

/// The `mac` of a scenario; omitted keys have the defaults of `MacDescription`. Throws `SourceFault`.
///
/// An audio device needs its `id`. By default it is built in, at half volume, with 'vmvc' and 'mute' on output element
/// 0. `elements` lists its properties and their elements: `[0, 1]` (all of vmvc, volm and mute), `{vmvc: [0], volm: [1,
/// 2]}`, or with values `{volm: {1: 0.3, 2: 0.5}, mute: {0: true}}`. `transport` is a word such as `built-in` or its
/// four-character code. Without `defaultOutput` the output is device 73, or else the first one.
[[nodiscard]] MacDescription readMac(const YamlValue& value, const ReadContext& context);

/// Every key of `mac`.
[[nodiscard]] std::vector<std::string_view> macNames();

/// Words for the state of the power sources, also used by an action.
[[nodiscard]] MacDescription::Power readPower(const YamlValue& value);

/// The number of displays; 0 is a Mac with its lid closed and nothing connected.
[[nodiscard]] std::size_t readDisplayCount(const YamlValue& value);

/// The answer to the login panel.
[[nodiscard]] LoginAnswer readLoginAnswer(const YamlValue& value);

} // namespace sentrel::simulation
