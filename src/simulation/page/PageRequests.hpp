#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace sentrel::simulation {

class LiveMac;

/// The outcome of a request.
struct PageAnswer {
    int status = 204;
    std::string error; ///< in plain words; empty if done
};

/// Handles the page's `POST /api/NAME` with a JSON body (see web/PROTOCOL.md). Any thread but the world's; any body is
/// safe.
[[nodiscard]] PageAnswer answerPage(LiveMac& mac, const std::string& name, const std::string& body);

/// The one request whose body is a picture.
inline constexpr std::string_view webcamRequest = "webcam";

/// The names of all requests, that of the webcam included.
[[nodiscard]] std::vector<std::string_view> requestNames();

/// Sets the webcam's picture from now on: a JPEG, or empty for the drawn scene.
[[nodiscard]] PageAnswer showWebcam(LiveMac& mac, const std::string& jpeg);

} // namespace sentrel::simulation
