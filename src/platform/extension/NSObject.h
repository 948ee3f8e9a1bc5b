#pragma once

namespace sela {

/// The root of what the platform hands over without naming its class. The receiver asks with dynamic_cast.
class NSObject {
public:
    virtual ~NSObject() = default;
};

} // namespace sela
