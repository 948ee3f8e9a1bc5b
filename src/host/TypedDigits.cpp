#include "host/TypedDigits.h"

#include "commandline/Arguments.h"
#include "commandline/PasscodeFile.h"

#include <cstring>

namespace sela {

Result<Secret> readDigits(const std::string& file) {
    Result<Secret> code = readPasscode(file);
    const std::string place = file == "-" ? "standard input" : file;
    if (!code)
        return usageError(place + ": " + code.error()->localizedFailureReason());
    if (code.value().empty() || code.value().exposed().find_first_not_of("0123456789") != std::string::npos)
        return usageError(place + ": the first line is not a passcode of digits");
    return code;
}

ErrorRef readTypedFiles(std::vector<Step>& steps) {
    for (Step& step : steps) {
        if (step.kind != Step::Kind::type || step.argument.empty())
            continue;
        const Result<Secret> digits = readDigits(step.argument);
        if (!digits)
            return digits.error();
        step.digits = digits.value();
    }
    return nullptr;
}

void overwriteTypedDigits(int argumentCount, char** arguments) {
    constexpr std::string_view option = "--type";
    for (int i = 1; i < argumentCount; ++i) {
        char* value = nullptr;
        if (arguments[i] == option && i + 1 < argumentCount)
            value = arguments[i + 1];
        else if (std::string_view(arguments[i]).starts_with("--type="))
            value = arguments[i] + option.size() + 1;
        if (value && *value >= '0' && *value <= '9')
            std::memset(value, 'x', std::strlen(value));
    }
}

} // namespace sela
