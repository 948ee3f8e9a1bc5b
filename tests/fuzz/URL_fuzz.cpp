#include "fuzz/FuzzTarget.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/URL.h"
#include "platform/foundation/UTF8.h"
#include "store/FileKind.h"
#include "vault/ImportPlace.h"

// Uses arbitrary bytes as a URL, a path, a name and a log line.
void fuzz(sela::DataView input) {
    const std::string_view text = sela::asText(input);
    if (const auto url = sela::URL::parse(text)) {
        require(url->path().starts_with('/') && url->path().find('\0') == std::string::npos);
        const auto again = sela::URL::parse(url->absoluteString());
        require(again && again->path() == url->path());
    }
    const sela::URL file = sela::URL::fileURL(text);
    require(file.path().starts_with('/'));
    require(sela::isValidUTF8(file.lastPathComponent()));
    require(file.appendingPathComponent("a.jpg").lastPathComponent() == "a.jpg");
    require(file.deletingLastPathComponent().path().starts_with('/'));
    sela::fileKind(text);

    const std::string name = sela::safeFileName(text);
    require(!name.empty() && name.front() != '.' && name.size() <= 255 && sela::isValidUTF8(name));
    require(name.find('/') == std::string::npos && name.find('\0') == std::string::npos);

    const std::string line = sela::escapedForLog(text);
    require(sela::isValidUTF8(line));
    for (const char c : line)
        require(static_cast<unsigned char>(c) >= 0x20 && c != 0x7F);
    require(line.find("\xC2\x9B") == std::string::npos && line.find("\xE2\x80\xAE") == std::string::npos);
}
