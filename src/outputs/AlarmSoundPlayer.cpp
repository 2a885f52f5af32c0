#include "outputs/AlarmSoundPlayer.hpp"

#include "foundation/Quietly.hpp"

#include <utility>

namespace sentrel {

AlarmSoundPlayer::AlarmSoundPlayer(MainActor mainActor, const AlarmSoundServices& services)
    : worker_(mainActor.scheduler(), services,
              [mainActor, weak = anchor_.weak(), &language = services.language](std::string_view message) {
                  const std::string translated = quietly([&] { return language.localized(message); });
                  mainActor.spawn(deliver(weak, translated.empty() ? std::string{message} : translated));
              })
{
}

Async<void> AlarmSoundPlayer::deliver(Weak<AlarmSoundPlayer> weak, std::string message)
{
    AlarmSoundPlayer* const player = weak.get();
    if (player != nullptr && player->onPlaybackDegraded) {
        player->onPlaybackDegraded(message);
    }
    co_return;
}

} // namespace sentrel
