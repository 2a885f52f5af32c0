#include "app/MenuBarScene.hpp"

#include "foundation/Quietly.hpp"

#include <chrono>
#include <utility>

namespace sentrel {

namespace {

using namespace std::chrono_literals;

constexpr Duration retryInterval = 1s;

} // namespace

MenuBarScene::MenuBarScene(MainActor actor, ports::StatusBar& statusBar)
    : actor_(actor), statusBar_(statusBar), redraw_(actor, [this] { drawInsistently(); })
{
}

void MenuBarScene::appear(Content content)
{
    content_ = std::move(content);
    drawInsistently();
}

void MenuBarScene::dismiss()
{
    if (item_ != nullptr) {
        item_->dismiss();
    }
}

void MenuBarScene::draw()
{
    if (item_ == nullptr) {
        auto item = statusBar_.makeStatusItem();
        item->setOpened([this] {
            content_.opened();
            draw(); // at once: the menu must not open with old content
        });
        item_ = std::move(item);
    }
    item_->setImage(content_.image(), content_.imageLabel());
    item_->showContent(content_.menu());
}

/// Draws, now or a little later. An icon that stayed as it was would tell the wrong state, and without its item nobody
/// could use the product.
void MenuBarScene::drawInsistently()
{
    const auto isDrawn = [this] {
        draw();
        return true;
    };
    if (insistently(isDrawn)) {
        retry_.reset();
    } else if (retry_ == nullptr) {
        Scheduler& scheduler = actor_.scheduler();
        retry_ = std::make_unique<RepeatingTimer>(scheduler, scheduler.mainExecutor(), retryInterval,
                                                  [this] { drawInsistently(); });
    }
}

} // namespace sentrel
