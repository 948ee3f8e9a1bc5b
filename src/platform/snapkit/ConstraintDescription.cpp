#include "platform/snapkit/ConstraintDescription.h"

#include "platform/foundation/FatalError.h"
#include "platform/uikit/UIView.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

namespace sela {

namespace {

std::uint64_t nextNumber() {
    static std::uint64_t number = 0;
    return ++number;
}

} // namespace

ConstraintDescription::ConstraintDescription(const UIView& view, ConstraintAttributes attributes,
                                             SourceLocation place)
    : view_(view), attributes_(std::move(attributes)), place_(place) {}

void ConstraintDescription::addAttributes(const ConstraintAttributes& attributes) {
    attributes_.insert(attributes_.end(), attributes.begin(), attributes.end());
}

void ConstraintDescription::relateTo(const ConstraintItem& item) {
    if (item.attributes.size() != 1 && item.attributes.size() != attributes_.size())
        fatalError("A constraint relates different numbers of attributes", place_);
    relateTo(item.view);
    targetAttributes_ = item.attributes;
}

void ConstraintDescription::relateTo(const UIView& view) {
    related_ = true;
    target_ = &view;
}

void ConstraintDescription::relateToSuperview() {
    if (!view_.superview())
        fatalError("A constraint needs a superview", place_);
    relateTo(*view_.superview());
}

void ConstraintDescription::relateTo(double value) {
    related_ = true;
    sizesAreConstant_ = true;
    if (!std::ranges::all_of(attributes_, isSize))
        relateToSuperview();
    offset_ += value;
}

void ConstraintDescription::relateTo(CGSize size) {
    if (!std::ranges::all_of(attributes_, isSize))
        fatalError("A constraint relates a place to a size", place_);
    related_ = true;
    sizesAreConstant_ = true;
    size_ = size;
}

void ConstraintDescription::addInsets(const UIEdgeInsets& insets) {
    insets_.top += insets.top;
    insets_.left += insets.left;
    insets_.bottom += insets.bottom;
    insets_.right += insets.right;
}

void ConstraintDescription::setPriority(double priority) {
    if (!(priority > 0 && priority <= ConstraintPriority::required))
        fatalError("A constraint's priority lies above 0 and up to 1000", place_);
    priority_ = priority;
}

void ConstraintDescription::resolve(std::vector<Constraint>& constraints) const {
    if (!related_)
        fatalError("Incomplete constraint: it says nothing about its " + std::string(nameOf(attributes_[0])),
                   place_);
    for (std::size_t i = 0; i < attributes_.size(); ++i) {
        const ConstraintAttribute attribute = attributes_[i];
        const ConstraintAttribute other = targetAttribute(i);
        if (isSize(attribute) != isSize(other) ||
            (!isSize(attribute) && isHorizontal(attribute) != isHorizontal(other)) ||
            (followsReading(attribute) && ignoresReading(other)) ||
            (ignoresReading(attribute) && followsReading(other)))
            fatalError("A constraint cannot relate " + std::string(nameOf(attribute)) + " to " +
                           nameOf(other),
                       place_);
        std::optional<ViewReference<const UIView>> target;
        if (target_ && !(sizesAreConstant_ && isSize(attribute)))
            target.emplace(*target_);
        constraints.push_back({.attribute = attribute,
                               .target = target,
                               .targetAttribute = other,
                               .multiplier = multiplier_,
                               .constant = constant(attribute),
                               .priority = priority_,
                               .number = nextNumber(),
                               .place = place_});
    }
}

ConstraintAttribute ConstraintDescription::targetAttribute(std::size_t index) const {
    if (!targetAttributes_)
        return attributes_[index];
    return targetAttributes_->size() == 1 ? targetAttributes_->front() : (*targetAttributes_)[index];
}

double ConstraintDescription::constant(ConstraintAttribute attribute) const {
    const bool fromRight =
        view_.effectiveUserInterfaceLayoutDirection() == UIUserInterfaceLayoutDirection::rightToLeft;
    switch (attribute) {
    case ConstraintAttribute::leading:
        return offset_ + (fromRight ? insets_.right : insets_.left);
    case ConstraintAttribute::trailing:
        return offset_ - (fromRight ? insets_.left : insets_.right);
    case ConstraintAttribute::left:
        return offset_ + insets_.left;
    case ConstraintAttribute::right:
        return offset_ - insets_.right;
    case ConstraintAttribute::top:
        return offset_ + insets_.top;
    case ConstraintAttribute::bottom:
        return offset_ - insets_.bottom;
    case ConstraintAttribute::width:
        return offset_ + size_.width - insets_.left - insets_.right;
    case ConstraintAttribute::height:
        return offset_ + size_.height - insets_.top - insets_.bottom;
    case ConstraintAttribute::centerX:
        return offset_ + (insets_.left - insets_.right) / 2;
    case ConstraintAttribute::centerY:
        return offset_ + (insets_.top - insets_.bottom) / 2;
    }
    fatalError("An attribute of a constraint is not one", place_);
}

} // namespace sela
