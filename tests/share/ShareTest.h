#pragma once

#include "platform/extension/NSExtensionItem.h"
#include "platform/foundation/ScopedMainQueue.h"
#include "store/SharedFolder.h"
#include "store/SharedItemLedger.h"
#include "support/FixedTextMeasurer.h"
#include "support/LogCapture.h"
#include "support/TemporaryHome.h"
#include "support/VirtualMainLoop.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

namespace sela {

/// A provisioned group on a fresh home, files to share, and a clock that the test moves.
class ShareTest : public testing::Test {
protected:
    ShareTest() { home.provision(); }

    std::shared_ptr<NSItemProvider> file(const std::string& name, std::string_view content = "x") const {
        return NSItemProvider::ofFile(URL::fileURL(home.write("source/" + name, content).string()));
    }

    /// The records of the group's ledger in their order; none when there is no ledger or it cannot be
    /// decoded.
    static std::vector<SharedItem> recordedItems() {
        std::vector<SharedItem> items;
        if (const std::optional<Data> data = sharedDefaults()->data(sharedItemsKey))
            if (const auto entries = SharedItemLedger::decode(*data))
                for (const auto& [key, item] : entries.value())
                    items.push_back(item);
        return items;
    }

    TemporaryHome home;
    LogCapture log;
    FixedTextMeasurer text;
    VirtualMainLoop loop;
    ScopedMainQueue scope{loop};
};

} // namespace sela
