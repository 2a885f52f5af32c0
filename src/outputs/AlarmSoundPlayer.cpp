#include "outputs/AlarmSoundPlayer.hpp"

#include "core/LocalizedText.hpp"
#include "runtime/WeakCall.hpp"

#include <utility>

namespace sentrel {

AlarmSoundPlayer::AlarmSoundPlayer(MainActor mainActor, const AlarmSoundServices& services)
    : worker_(mainActor.scheduler(), services,
              [mainActor, weak = anchor_.weak(), &language = services.language](std::string_view message) {
                  callIfAlive(mainActor, weak, &AlarmSoundPlayer::report, localizedInAnyCase(language, message));
              })
{
}

void AlarmSoundPlayer::report(std::string message)
{
    if (onPlaybackDegraded) {
        onPlaybackDegraded(message);
    }
}

} // namespace sentrel
