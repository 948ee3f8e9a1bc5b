#pragma once

#include <string>
#include <typeinfo>

namespace sela {

/// A class's name without its namespaces. Thread-safe.
std::string className(const std::type_info& type);

} // namespace sela
