#include "outputs/AlarmSoundPlayer.hpp"

#include "foundation/Quietly.hpp"
#include "runtime/WeakCall.hpp"

#include <utility>

namespace sentrel {

AlarmSoundPlayer::AlarmSoundPlayer(MainActor mainActor, const AlarmSoundServices& services)
    : worker_(mainActor.scheduler(), services,
              [mainActor, weak = anchor_.weak(), &language = services.language](std::string_view message) {
                  const std::string translated = quietly([&] { return language.localized(message); });
                  callIfAlive(mainActor, weak, &AlarmSoundPlayer::report,
                              translated.empty() ? std::string{message} : translated);
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
