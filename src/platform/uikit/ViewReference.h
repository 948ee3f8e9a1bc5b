#pragma once

#include <memory>

namespace sela {

class UIView;

/// Refers to a view without owning it, and to nothing once the view is destroyed. Main thread only.
template<class View = UIView>
class ViewReference {
public:
    ViewReference() = default;
    explicit ViewReference(View& view) : self_(view.self()) {}

    /// The view; null when there is none (any more). Any call that runs foreign code may destroy it.
    View* get() const { return self_ ? static_cast<View*>(*self_) : nullptr; }

    explicit operator bool() const { return get() != nullptr; }

private:
    std::shared_ptr<UIView* const> self_; ///< the view's destructor sets it to null
};

} // namespace sela
