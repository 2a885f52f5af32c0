#pragma once

#include "foundation/Bytes.hpp"
#include "simulation/story/StoryPage.hpp"
#include "simulation/story/html/MotionTrace.hpp"
#include "simulation/story/html/SoundClips.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace sentrel::simulation {

/// A play as plain values. Times are seconds since launch.
struct StoryRecord {
    struct Line {
        std::optional<double> at; ///< none for one after the story
        StoryTone tone = StoryTone::reaction;
        std::string text;
    };
    struct Photo {
        double at = 0.0;
        std::string reason; ///< its alert's, in English
        Bytes jpeg;
    };
    struct Threshold {
        double from = 0.0;
        std::optional<double> value; ///< in g; none while motion is not watched
    };
    /// The screen of the owner's phone at the end.
    struct Phone {
        struct Notification {
            double at = 0.0;
            std::string text;
        };
        struct Alert {
            double at = 0.0;
            std::string title;
            std::string device;
            Bytes thumbnail; ///< JPEG; empty without a photo
        };
        struct Mac {
            std::string name;
            bool isArmed = false;
        };

        std::vector<Notification> notifications; ///< oldest first
        std::vector<Alert> alerts;               ///< newest first
        std::vector<Mac> macs;
    };

    std::string title;
    std::string scene; ///< the Mac's initial state
    double seconds = 0.0;
    std::vector<Line> lines;
    std::vector<SoundClip> sounds;
    bool isSoundCut = false; ///< the recording ended before the story
    MotionTrace motion;
    std::vector<Threshold> thresholds; ///< in order of time
    std::vector<Photo> photos;
    std::size_t photosLeftOut = 0;
    std::optional<Phone> phone; ///< none if it has never had anything to show
};

} // namespace sentrel::simulation
