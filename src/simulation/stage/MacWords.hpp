#pragma once

#include "app/ShellWindowDelegate.hpp"
#include "foundation/FourCharCode.hpp"
#include "ports/CloudAccount.hpp"
#include "simulation/mac/MacDescription.hpp"
#include "simulation/stage/ValueType.hpp"

#include <array>
#include <cstdint>
#include <string_view>

// The words for states of the Mac, in scenarios, in expectations and on the page.

namespace sentrel::simulation {

inline constexpr std::array<Word<MacDescription::Power>, 3> powerWords{{
    {"ac", MacDescription::Power::ac},
    {"battery", MacDescription::Power::battery},
    {"unknown", MacDescription::Power::unknown},
}};

inline constexpr std::array<Word<MacDescription::Lid>, 3> lidWords{{
    {"open", MacDescription::Lid::open},
    {"closed", MacDescription::Lid::closed},
    {"absent", MacDescription::Lid::absent},
}};

inline constexpr std::array<Word<MacDescription::Accelerometer>, 3> accelerometerWords{{
    {"present", MacDescription::Accelerometer::present},
    {"absent", MacDescription::Accelerometer::absent},
    {"resting", MacDescription::Accelerometer::resting},
}};

inline constexpr std::array<Word<SimulatedMusic::Playback>, 3> musicWords{{
    {"playing", SimulatedMusic::Playback::playing},
    {"paused", SimulatedMusic::Playback::paused},
    {"absent", SimulatedMusic::Playback::absent},
}};

inline constexpr std::array<Word<SimulatedMusic::Consent>, 3> consentWords{{
    {"granted", SimulatedMusic::Consent::granted},
    {"denied", SimulatedMusic::Consent::denied},
    {"undetermined", SimulatedMusic::Consent::undetermined},
}};

inline constexpr std::array<Word<ports::CloudAccountStatus>, 5> accountWords{{
    {"none", ports::CloudAccountStatus::noAccount},
    {"available", ports::CloudAccountStatus::available},
    {"restricted", ports::CloudAccountStatus::restricted},
    {"temporarily-unavailable", ports::CloudAccountStatus::temporarilyUnavailable},
    {"unknown", ports::CloudAccountStatus::couldNotDetermine},
}};

/// The identifiers of the application's windows.
inline constexpr std::array<Word<std::string_view>, 2> windowWords{
    {{"main", mainWindow.identifier}, {"alerts", alertsWindow.identifier}}};

inline constexpr std::array<Word<bool>, 2> networkWords{{{"up", true}, {"down", false}}};

/// The names of the transports of audio devices, and their four-character codes.
inline constexpr std::array<Word<std::uint32_t>, 27> transportWords{{
    {"built-in", fourCharCode("bltn")},  {"builtIn", fourCharCode("bltn")},      {"bltn", fourCharCode("bltn")},
    {"usb", fourCharCode("usb ")},       {"usb ", fourCharCode("usb ")},         {"bluetooth", fourCharCode("blue")},
    {"blue", fourCharCode("blue")},      {"bluetooth-le", fourCharCode("blea")}, {"blea", fourCharCode("blea")},
    {"hdmi", fourCharCode("hdmi")},      {"displayport", fourCharCode("dprt")},  {"dprt", fourCharCode("dprt")},
    {"airplay", fourCharCode("airp")},   {"airp", fourCharCode("airp")},         {"thunderbolt", fourCharCode("thun")},
    {"thun", fourCharCode("thun")},      {"pci", fourCharCode("pci ")},          {"pci ", fourCharCode("pci ")},
    {"firewire", fourCharCode("1394")},  {"1394", fourCharCode("1394")},         {"avb", fourCharCode("eavb")},
    {"eavb", fourCharCode("eavb")},      {"virtual", fourCharCode("virt")},      {"virt", fourCharCode("virt")},
    {"aggregate", fourCharCode("grup")}, {"grup", fourCharCode("grup")},         {"unknown", 0},
}};

} // namespace sentrel::simulation
