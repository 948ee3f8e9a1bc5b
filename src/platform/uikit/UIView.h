#pragma once

#include "platform/uikit/AnimationGroup.h"
#include "platform/uikit/CALayer.h"
#include "platform/uikit/Geometry.h"
#include "platform/uikit/UIColor.h"
#include "platform/uikit/UIKeyCommand.h"
#include "platform/uikit/UITouch.h"
#include "platform/uikit/ViewContent.h"
#include "platform/uikit/ViewReference.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sela {

/// Marks construction from an archive. There are no archives here: a class that supports the constructor
/// builds itself as if the archive held nothing, and a class that does not stops the process with
/// "init(coder:) has not been implemented".
struct NSCoder {};

class ConstraintViewDSL;
class LayoutConstraints;
class UITapGestureRecognizer;
class UIViewController;
class UIWindow;
struct ViewAnimations;
template<class T>
class PropertyAnimation;

/// Where reading begins, and so which edge leads.
enum class UIUserInterfaceLayoutDirection { leftToRight, rightToLeft };

/// What a view is to a screen reader; `secureTextField` is an entry that reveals its length but never its
/// content.
enum class AccessibilityRole {
    none,
    button,
    image,
    staticText,
    keyboardKey,
    secureTextField,
    progress,
    list,
    listItem
};

/// Whether an element shows or hides what belongs to it.
enum class AccessibilityExpandedStatus { unsupported, expanded, collapsed };

/// A rectangle of the screen that holds other views, in a tree whose root is a `UIWindow`.
///
/// A view is owned where it is declared, usually as a member by value; the tree only refers to it, and a view
/// that is destroyed leaves its superview and releases its subviews. Main thread only.
///
/// A view has the values that it was given (the model) and what is shown while it is animated (the
/// presentation): changes made in an `animate` block take effect in the model at once, and the presentation
/// follows as a function of the main queue's clock. Layout and touches use the model, drawing the
/// presentation. To draw, walk the tree from the window: for each view that is not hidden map by
/// `presentation().toSuperview()`, multiply by `presentation().alpha`, draw shadow, background, border and
/// content, and then the subviews in order, within the rounded bounds when `clipsToBounds`.
class UIView {
public:
    /// How content is fitted into the bounds.
    enum class ContentMode { scaleToFill, scaleAspectFit, scaleAspectFill, center };

    /// In `intrinsicContentSize`: no natural length in that direction.
    static constexpr double noIntrinsicMetric = -1;

    explicit UIView(const CGRect& frame = {});

    /// `name` is by custom the field's name in its owner.
    explicit UIView(std::string_view name);
    explicit UIView(const NSCoder& coder);
    virtual ~UIView();
    UIView(const UIView&) = delete;
    UIView& operator=(const UIView&) = delete;

    /// The class's name without its namespace, such as "UILabel", for dumps of the tree.
    std::string className() const;

    /// The name that the view was made with, for finding it; empty without one.
    const std::string& name() const { return name_; }

    // The tree

    UIView* superview() const { return superview_; }

    /// The subviews, the last one on top.
    const std::vector<UIView*>& subviews() const { return subviews_; }

    /// Adds `view` on top; it leaves its former superview first. Adding a view to itself or into its own
    /// subtree stops the process.
    void addSubview(UIView& view);

    /// As `addSubview`, at `index` of the subviews (at most their number).
    void insertSubview(UIView& view, std::size_t index);

    void removeFromSuperview();

    /// The window at the root of the tree; null while there is none.
    UIWindow* window();
    const UIWindow* window() const;

    /// Whether this view is `view` or lies inside it.
    bool isDescendant(const UIView& view) const;

    /// The first view named `name` in this subtree, itself included, in the order of the tree; null when
    /// there is none.
    UIView* viewNamed(std::string_view name);

    /// The view at the root of the tree, often the window.
    UIView& treeRoot();
    const UIView& treeRoot() const;

    /// The controller whose root view this is; null for any other view.
    UIViewController* viewController() const { return viewController_; }

    // Geometry (points)

    /// The rectangle in the superview's coordinates. With a transform other than the identity, reading gives
    /// the upright rectangle around what is shown, and setting ignores the transform (as `setLayoutFrame`).
    CGRect frame() const;
    void setFrame(const CGRect& frame) { setLayoutFrame(frame); }

    /// Sets centre and size, leaving the transform and the bounds' origin alone: what layout uses.
    void setLayoutFrame(const CGRect& frame);

    /// The rectangle in the superview's coordinates as it is before the transform.
    CGRect layoutFrame() const;

    /// The rectangle in the view's own coordinates.
    CGRect bounds() const { return bounds_; }
    void setBounds(const CGRect& bounds);

    /// The middle in the superview's coordinates.
    CGPoint center() const { return center_; }
    void setCenter(CGPoint center);

    /// A map applied about the centre.
    const CGAffineTransform& transform() const { return transform_; }
    void setTransform(const CGAffineTransform& transform);

    /// The map from own coordinates to the superview's, by the model.
    CGAffineTransform toSuperview() const;

    /// A point of this view in the coordinates of `view`, which must be of the same tree. In a view that is
    /// scaled to 0, or inside one, every point is infinitely far away.
    CGPoint convert(CGPoint point, const UIView& view) const;

    // Looks

    bool isHidden() const { return hidden_; }
    virtual void setHidden(bool hidden);

    /// 0 (invisible) to 1, for the view and everything in it.
    double alpha() const { return alpha_; }
    void setAlpha(double alpha);

    /// Absent: nothing is filled.
    const std::optional<UIColor>& backgroundColor() const { return backgroundColor_; }
    void setBackgroundColor(const std::optional<UIColor>& color);

    /// The view's own tint, else that of the nearest view above that has one, else the platform's blue.
    /// Setting none returns to that inheritance.
    virtual UIColor tintColor() const;
    virtual void setTintColor(const std::optional<UIColor>& color);

    bool clipsToBounds() const { return layer_.masksToBounds(); }
    void setClipsToBounds(bool clips) { layer_.setMasksToBounds(clips); }

    ContentMode contentMode() const { return contentMode_; }
    void setContentMode(ContentMode mode);

    CALayer& layer() { return layer_; }
    const CALayer& layer() const { return layer_; }

    // Content

    /// What the view itself shows now.
    virtual ViewContent content() const { return {}; }

    /// The views whose contents together are what this view shows: itself, unless it consists of others, as a
    /// button does of a title and an image.
    virtual std::vector<const UIView*> contentViews() const { return {this}; }

    // Accessibility

    /// The view's label for a screen reader: the label that was set, else the text that it shows.
    std::string accessibilityLabel() const;
    void setAccessibilityLabel(std::string label) { accessibilityLabel_ = std::move(label); }
    const std::string& accessibilityValue() const { return accessibilityValue_; }
    void setAccessibilityValue(std::string value) { accessibilityValue_ = std::move(value); }
    AccessibilityRole accessibilityRole() const { return accessibilityRole_; }
    void setAccessibilityRole(AccessibilityRole role) { accessibilityRole_ = role; }
    AccessibilityExpandedStatus accessibilityExpandedStatus() const { return accessibilityExpandedStatus_; }
    void setAccessibilityExpandedStatus(AccessibilityExpandedStatus status) {
        accessibilityExpandedStatus_ = status;
    }

    // Layout

    /// The direction in which the view lays out what follows the reading direction: the application's.
    UIUserInterfaceLayoutDirection effectiveUserInterfaceLayoutDirection() const;

    /// Entry to the constraint language, which defines it.
    ConstraintViewDSL snp();

    /// The constraints that give this view its frame; null when there are none.
    LayoutConstraints* layoutConstraints() const { return layoutConstraints_.get(); }

    /// Takes over constraints (null: removes them) and asks for layout. Call `constraintsChanged` when their
    /// content changes later.
    void setLayoutConstraints(std::unique_ptr<LayoutConstraints> constraints);

    /// The view's constraints, or what its constraints depend on, changed: its layout root is solved again.
    void constraintsChanged();

    /// Asks for `layoutSubviews` in the next layout pass.
    void setNeedsLayout();

    /// Lays out all views of this view's tree that asked for it, from the root downwards.
    void layoutIfNeeded();

    /// Places subviews that have no constraints. Called in the layout pass after the bounds' size changed,
    /// after a subview was added or removed, and after `setNeedsLayout`; subviews under constraints have
    /// their frames by then.
    virtual void layoutSubviews() {}

    /// The natural size, each length `noIntrinsicMetric` where there is none.
    virtual CGSize intrinsicContentSize() const { return {noIntrinsicMetric, noIntrinsicMetric}; }

    /// The natural height of a view that is `width` points wide; `noIntrinsicMetric` when there is none.
    virtual double intrinsicHeight(double /*width*/) const { return intrinsicContentSize().height; }

    /// The natural size changed.
    void invalidateIntrinsicContentSize() { constraintsChanged(); }

    /// The preferred size when it may be up to `size`; the bounds' size unless a class knows better.
    virtual CGSize sizeThatFits(CGSize size) const;

    // Drawing

    /// The view looks different: the part of the window that it and its subviews cover is drawn again.
    void setNeedsDisplay();

    /// What is shown now.
    struct Presentation {
        CGRect bounds;
        CGPoint center;
        CGAffineTransform transform; ///< about the centre, the layer's animations included
        double alpha = 1;
        std::optional<UIColor> backgroundColor;

        /// The map from own coordinates to the superview's.
        CGAffineTransform toSuperview() const;
    };
    Presentation presentation() const;

    /// The map from own coordinates to those of the root of the tree, as shown now.
    CGAffineTransform presentationToRoot() const;

    /// Whether the look of the view itself (not of its subviews) is changing over time now.
    virtual bool isAnimating() const;

    /// Whether its motion has no end, as that of a spinner.
    virtual bool animatesForever() const { return false; }

    /// Updates what depends on the clock beyond animations (a list that rolls on) before it is drawn.
    virtual void prepareForDisplay() {}

    // Keys

    /// A key of this input taps the view, as a finger would.
    void addKeyCommand(std::string_view input) { addKeyCommand({std::string(input), {}}); }
    void addKeyCommand(UIKeyCommand command) { keyCommands_.push_back(std::move(command)); }
    const std::vector<UIKeyCommand>& keyCommands() const { return keyCommands_; }

    // Touches

    bool isUserInteractionEnabled() const { return userInteractionEnabled_; }
    void setUserInteractionEnabled(bool enabled) { userInteractionEnabled_ = enabled; }

    UITapGestureRecognizer& addGestureRecognizer(std::unique_ptr<UITapGestureRecognizer> recognizer);
    const std::vector<std::unique_ptr<UITapGestureRecognizer>>& gestureRecognizers() const {
        return gestureRecognizers_;
    }

    /// The topmost view of this subtree at `point` (own coordinates) that takes touches; null when there is
    /// none. Hidden views, views of an alpha below 0.01, views without user interaction and what is in them
    /// take none, and neither does a part of a subview outside its superview's bounds, as on the phone.
    virtual UIView* hitTest(CGPoint point);

    /// Whether a touch at `point` (own coordinates) is the view's: inside the bounds, unless a class knows
    /// better.
    virtual bool pointInside(CGPoint point) const { return bounds_.contains(point); }

    /// The touch of a finger that came down on this view; cancelled instead of ended when another view takes
    /// it over or this one is destroyed. Each passes the touch on to the superview unless a class handles it.
    virtual void touchesBegan(const UITouch& touch);
    virtual void touchesMoved(const UITouch& touch);
    virtual void touchesEnded(const UITouch& touch);
    virtual void touchesCancelled(const UITouch& touch);

    // Animation

    /// Runs `changes` at once and shows what they change (transform, alpha, frame, bounds, centre and
    /// background colour of any view) over `duration` seconds, eased in and out. `completion` (may be empty)
    /// is called exactly once on the main queue when all have ended: with true, or with false when a change
    /// was cut short by another change of the same property or by its view leaving the window. Without any
    /// change, or with a duration of 0, it is called with true in the main queue's next turn.
    static void animate(double duration, const std::function<void()>& changes,
                        AnimationGroup::Completion completion = {}) {
        AnimationGroup::run(duration, changes, std::move(completion));
    }

    /// Runs `changes` so that nothing in it is animated, even inside an `animate` block.
    static void performWithoutAnimation(const std::function<void()>& changes) {
        AnimationGroup::runWithoutAnimation(changes);
    }

protected:
    /// Called after the view came into a window, moved to another or left it (`window()` is null then),
    /// before the same call on its subviews. Not called by the destructor.
    virtual void didMoveToWindow() {}

    /// The tint that is shown changed, here or above.
    virtual void tintColorDidChange() {}

private:
    friend class UIViewController;
    friend class UIWindow;
    template<class View>
    friend class ViewReference;

    template<class T>
    void change(PropertyAnimation<T> ViewAnimations::*animation, T& value, const T& newValue);

    virtual UIWindow* asWindow() { return nullptr; }
    std::shared_ptr<UIView* const> self() const;
    void link(UIView& view, std::size_t index);
    void unlink();
    void movedToWindow(UIWindow* former);
    void endAnimations();
    void tintChanged();
    void layoutTree();
    void solveAgain();
    bool hasConstrainedSubview() const;
    std::optional<CGPoint> fromRoot(CGPoint point) const;
    CGRect displayExtent() const;
    CGRect displayRectInWindow() const;
    CGRect takeChangedRect();

    mutable std::shared_ptr<UIView*> self_; ///< made for the first reference to this view
    UIView* superview_ = nullptr;
    std::vector<UIView*> subviews_;
    UIViewController* viewController_ = nullptr;
    std::string name_;

    CGRect bounds_;
    CGPoint center_;
    CGAffineTransform transform_;
    double alpha_ = 1;
    bool hidden_ = false;
    bool userInteractionEnabled_ = true;
    bool needsLayout_ = true;
    bool subtreeNeedsLayout_ = true;
    ContentMode contentMode_ = ContentMode::scaleToFill;
    std::optional<UIColor> backgroundColor_;
    std::optional<UIColor> tintColor_;
    CALayer layer_;
    std::unique_ptr<ViewAnimations> animations_;
    std::unique_ptr<LayoutConstraints> layoutConstraints_;
    std::vector<std::unique_ptr<UITapGestureRecognizer>> gestureRecognizers_;
    std::vector<UIKeyCommand> keyCommands_;
    std::string accessibilityLabel_;
    std::string accessibilityValue_;
    AccessibilityRole accessibilityRole_ = AccessibilityRole::none;
    AccessibilityExpandedStatus accessibilityExpandedStatus_ = AccessibilityExpandedStatus::unsupported;
};

} // namespace sela
