#include "platform/uikit/ClassName.h"

#include <cstdlib>
#include <cxxabi.h>
#include <memory>

namespace sela {

std::string className(const std::type_info& type) {
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> text(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
    const std::string name = status == 0 ? text.get() : type.name();
    return name.substr(name.rfind(':') + 1);
}

} // namespace sela
