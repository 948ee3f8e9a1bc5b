#pragma once

#include "platform/foundation/SourceLocation.h"
#include "platform/snapkit/ConstraintAttribute.h"

namespace sela {

/// The words for attributes, shared by all stages of the constraint language. `Stage` has an operation
/// `name(ConstraintAttributes, SourceLocation)` whose result is what each word returns.
template<class Stage>
class ConstraintAttributeWords {
public:
    using Place = SourceLocation;
    using Attribute = ConstraintAttribute;

    auto left(Place place = Place::current()) { return stage().name({Attribute::left}, place); }
    auto right(Place place = Place::current()) { return stage().name({Attribute::right}, place); }
    auto top(Place place = Place::current()) { return stage().name({Attribute::top}, place); }
    auto bottom(Place place = Place::current()) { return stage().name({Attribute::bottom}, place); }
    auto leading(Place place = Place::current()) { return stage().name({Attribute::leading}, place); }
    auto trailing(Place place = Place::current()) { return stage().name({Attribute::trailing}, place); }
    auto width(Place place = Place::current()) { return stage().name({Attribute::width}, place); }
    auto height(Place place = Place::current()) { return stage().name({Attribute::height}, place); }
    auto centerX(Place place = Place::current()) { return stage().name({Attribute::centerX}, place); }
    auto centerY(Place place = Place::current()) { return stage().name({Attribute::centerY}, place); }

    /// Top, left, bottom and right.
    auto edges(Place place = Place::current()) {
        return stage().name({Attribute::top, Attribute::left, Attribute::bottom, Attribute::right}, place);
    }

    /// Width and height.
    auto size(Place place = Place::current()) {
        return stage().name({Attribute::width, Attribute::height}, place);
    }

    /// Both centres.
    auto center(Place place = Place::current()) {
        return stage().name({Attribute::centerX, Attribute::centerY}, place);
    }

private:
    Stage& stage() { return static_cast<Stage&>(*this); }
};

} // namespace sela
