#pragma once

namespace sela {

/// The base of objects that the platform passes without naming their class. The receiver asks with
/// dynamic_cast.
class NSObject {
public:
    virtual ~NSObject() = default;
};

} // namespace sela
