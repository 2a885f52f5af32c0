#pragma once

#include "simulation/mac/MacDescription.hpp"
#include "simulation/stage/ValueType.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace sentrel::simulation {

// The parts of a scenario that describe a Mac. Some are also values of actions.

/// The `mac` of a scenario; omitted keys have the defaults of `MacDescription`.
[[nodiscard]] ValueType<MacDescription> macType();

/// Every key of `mac`.
[[nodiscard]] std::vector<std::string_view> macNames();

/// The audio devices of `mac`.
///
/// A device needs its `id`. By default it is built in, at half volume, with 'vmvc' and 'mute' on output element 0.
/// `elements` lists its properties and their elements: `[0, 1]` (all of vmvc, volm and mute), `{vmvc: [0], volm: [1,
/// 2]}`, or with values `{volm: {1: 0.3, 2: 0.5}, mute: {0: true}}`. `transport` is a word such as `built-in` or its
/// four-character code. Without `defaultOutput` the output is device 73, or else the first one.
[[nodiscard]] ValueType<std::vector<AudioDevice>> audioDevicesType();

/// A change of the cameras: a map, or for short the devices alone.
[[nodiscard]] ValueType<CameraChange> cameraType();

/// A change of the iCloud account and the cloud: a map, or for short the account alone. An account is a user's name or
/// a word for its state. A plain word close to such a word is refused; a quoted one is a name.
[[nodiscard]] ValueType<CloudChange> cloudType();

/// 0 to 16 displays; 0 is a Mac with its lid closed and nothing connected.
[[nodiscard]] ValueType<std::size_t> displaysType();

} // namespace sentrel::simulation
