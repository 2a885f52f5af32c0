#include "app/MenuBarScene.hpp"

#include "foundation/Quietly.hpp"

#include <utility>

namespace sentrel {

MenuBarScene::MenuBarScene(MainActor actor, ports::StatusBar& statusBar)
    : statusBar_(statusBar), redraw_(actor, [this] { draw(); })
{
}

void MenuBarScene::appear(Content content)
{
    content_ = std::move(content);
    // Without its item nobody could use the product.
    insistently([this] { item_ = statusBar_.makeStatusItem(); });
    if (item_ == nullptr) {
        return;
    }
    item_->setOpened([this] {
        content_.opened();
        draw(); // at once: the menu must not open with old content
    });
    insistently([this] { draw(); });
}

void MenuBarScene::dismiss()
{
    if (item_ != nullptr) {
        item_->dismiss();
    }
}

void MenuBarScene::draw()
{
    if (item_ != nullptr) {
        item_->setImage(content_.image(), content_.imageLabel());
        item_->showContent(content_.menu());
    }
}

} // namespace sentrel
