#pragma once

#include <string>

namespace sentrel::simulation {

class LiveMac;

/// What became of a request.
struct PageAnswer {
    int status = 204;
    std::string error; ///< in plain words, unless it was done
};

/// Does what the page asks for by `POST /api/NAME` with a body of JSON (see web/PROTOCOL.md). Any thread but the
/// world's; any body.
[[nodiscard]] PageAnswer answerPage(LiveMac& mac, const std::string& name, const std::string& body);

/// What the webcam sees from now on: a JPEG, or nothing for the drawn scene.
[[nodiscard]] PageAnswer showWebcam(LiveMac& mac, const std::string& jpeg);

} // namespace sentrel::simulation
