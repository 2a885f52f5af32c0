#include "mac/windows/TreeRenderer.hpp"

#include "ui/Node.hpp"

#include <utility>

namespace sentrel::mac {

TreeRenderer::TreeRenderer(NSView* container) : container_(container)
{
}

TreeRenderer::~TreeRenderer()
{
    [root_ ? root_->outer() : nil removeFromSuperview];
}

void TreeRenderer::render(ui::View content)
{
    // The old tree stays until nothing refers to it: lists read their rows whenever they scroll.
    const auto before = std::exchange(content_, std::make_shared<const ui::View>(std::move(content)));
    const ui::Traits& traits = content_->traits;
    NSView* const container = container_;
    NSView* const drawn = root_ ? root_->outer() : nil;
    root_ = DrawnNode::draw(std::move(root_), *content_, "", {});
    if (root_->outer() != drawn) {
        [drawn removeFromSuperview];
        [container addSubview:root_->outer()];
    }
    // The panes of a split view have safe areas of their own, below the toolbar.
    const bool reachesEdges = traits.ignoresSafeAreas || ui::elementOf<ui::SplitView>(*content_) != nullptr;
    const id area = reachesEdges ? static_cast<id>(container) : container.safeAreaLayoutGuide;
    placement_.place(area, *root_, traits.ignoresSafeAreas || traits.background.has_value());
    windowChanged();
}

void TreeRenderer::visit(const DrawnNode::Visit& visitor)
{
    if (root_) {
        root_->visit("", visitor);
    }
}

void TreeRenderer::windowChanged()
{
    if (!root_) {
        return;
    }
    NSView* const container = container_;
    attachments_.show(container.window, *content_);
    root_->applyFocus();
}

} // namespace sentrel::mac
