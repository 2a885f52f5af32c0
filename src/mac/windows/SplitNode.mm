#include "mac/foundation/CallCopy.hpp"
#include "mac/windows/ElementNodes.hpp"
#include "mac/windows/Placing.hpp"
#include "ui/Node.hpp"

// A sidebar that the user can hide, and the detail beside it.

using namespace sentrel;
using namespace sentrel::mac;

namespace {

constexpr double narrowestSidebar = 180.0;
constexpr double widestSidebar = 360.0;
constexpr double narrowestDetail = 280.0;

} // namespace

/// Reports when the user hides or shows the sidebar at the divider.
@interface SentrelSplitController : NSSplitViewController {
@public
    ui::Binding<bool> isSidebarShown;
    BOOL isMoving;      ///< the tree is moving the sidebar
    double wishedWidth; ///< of the sidebar, when it first appears; 0: AppKit's choice
}
- (void)showSidebar:(BOOL)isShown;
@end

@implementation SentrelSplitController

- (void)viewDidAppear
{
    [super viewDidAppear];
    if (wishedWidth > 0.0 && !self.sidebar.isCollapsed) {
        [self.splitView setPosition:wishedWidth ofDividerAtIndex:0];
        // From now on the user chooses the width.
        wishedWidth = 0.0;
    }
}

- (NSSplitViewItem*)sidebar
{
    return self.splitViewItems.firstObject;
}

- (void)showSidebar:(BOOL)isShown
{
    if (self.sidebar.isCollapsed != isShown) {
        return;
    }
    if (self.view.window == nil) {
        self.sidebar.collapsed = !isShown;
        return;
    }
    isMoving = YES;
    __weak SentrelSplitController* const weakSelf = self;
    NSSplitViewItem* const sidebar = self.sidebar;
    [NSAnimationContext
        runAnimationGroup:^(NSAnimationContext*) {
            sidebar.animator.collapsed = !isShown;
        }
        completionHandler:^{
            SentrelSplitController* const controller = weakSelf;
            if (controller != nil) {
                controller->isMoving = NO;
            }
        }];
}

- (void)splitViewDidResizeSubviews:(NSNotification*)notification
{
    [super splitViewDidResizeSubviews:notification];
    // Not during layout: the callback brings a new tree.
    __weak SentrelSplitController* const weakSelf = self;
    dispatch_async(dispatch_get_main_queue(), ^{
        [weakSelf tellSidebar];
    });
}

- (void)tellSidebar
{
    const bool isShown = !self.sidebar.isCollapsed;
    if (!isMoving && isShown != isSidebarShown.value) {
        callCopy(isSidebarShown.set, isShown); // the new tree brings another
    }
}

@end

namespace {

/// One side with its content.
class Pane {
public:
    Pane() { controller_.view = [[NSView alloc] init]; }

    [[nodiscard]] NSViewController* controller() const { return controller_; }

    void show(const ui::View& view, std::string step, const Surroundings& surroundings)
    {
        DrawnNode::drawIn(controller_.view, drawn_, view, std::move(step), surroundings);
        placement_.place(controller_.view.safeAreaLayoutGuide, *drawn_);
    }

    void hide()
    {
        if (drawn_) {
            [drawn_->outer() removeFromSuperview];
            drawn_.reset();
            placement_.forget();
        }
    }

    void visit(const std::function<void(DrawnNode&)>& visit) const
    {
        if (drawn_) {
            visit(*drawn_);
        }
    }

private:
    NSViewController* const controller_ = [[NSViewController alloc] init];
    std::unique_ptr<DrawnNode> drawn_;
    Placement placement_;
};

class SplitNode final : public DrawnNode {
public:
    SplitNode() : SplitNode([[SentrelSplitController alloc] init]) {}

private:
    explicit SplitNode(SentrelSplitController* controller) : DrawnNode(controller.view), controller_(controller)
    {
        controller_.splitView.vertical = YES;
        NSSplitViewItem* const side = [NSSplitViewItem sidebarWithViewController:sidebar_.controller()];
        side.minimumThickness = narrowestSidebar;
        side.maximumThickness = widestSidebar;
        side.canCollapse = YES;
        NSSplitViewItem* const rest = [NSSplitViewItem splitViewItemWithViewController:detail_.controller()];
        rest.minimumThickness = narrowestDetail;
        [controller_ addSplitViewItem:side];
        [controller_ addSplitViewItem:rest];
    }

    void show(const ui::View& view, const Surroundings& surroundings) override
    {
        controller_->isSidebarShown = ui::elementOf<ui::SplitView>(view)->isSidebarShown;
        [controller_ showSidebar:controller_->isSidebarShown.value];
        if (!isShown_ && !view.children.empty()) {
            controller_->wishedWidth = view.children.front().traits.size.width.value_or(0.0);
        }
        isShown_ = true;
        Surroundings inner;
        inner.isEnabled = surroundings.isEnabled;
        inner.isPane = true;
        showPane(detail_, view, 1, inner);
        inner.isInSidebar = true;
        showPane(sidebar_, view, 0, inner);
    }

    static void showPane(Pane& pane, const ui::View& view, std::size_t index, const Surroundings& surroundings)
    {
        if (index >= view.children.size() || view.children[index].traits.isHidden) {
            pane.hide();
            return;
        }
        pane.show(view.children[index], ui::stepOf(view.children[index], index), surroundings);
    }

    [[nodiscard]] bool wantsAll(NSLayoutConstraintOrientation /*orientation*/) const override { return true; }
    void eachChild(const std::function<void(DrawnNode&)>& visit) override
    {
        sidebar_.visit(visit);
        detail_.visit(visit);
    }

    SentrelSplitController* const controller_;
    bool isShown_ = false;
    Pane sidebar_;
    Pane detail_;
};

} // namespace

std::unique_ptr<DrawnNode> sentrel::mac::makeNode(const ui::SplitView& /*split*/)
{
    return std::make_unique<SplitNode>();
}
