// Saves files by the store alone, one after another, each recorded before the next: save-files FILE... The
// group is that of the environment. It does what the Add button of sela-share starts, without the program's
// start and its screens.

#include "platform/foundation/FatalError.h"
#include "platform/foundation/HeadlessMainLoop.h"
#include "platform/foundation/Heap.h"
#include "platform/foundation/ScopedMainQueue.h"
#include "platform/foundation/TimeText.h"
#include "store/SharedItemManager.h"

#include <functional>

int main(int argc, char** argv) {
    sela::keepFreedMemory();
    sela::HeadlessMainLoop loop;
    const sela::ScopedMainQueue scope(loop);
    const std::function<void(int)> save = [&](int index) {
        if (index == argc)
            return;
        const sela::URL source = sela::URL::fileURL(argv[index]);
        const std::string name = source.lastPathComponent();
        const sela::SharedItem item{sela::uniqueTimeText() + name, {"Trips"}, false, name};
        sela::SharedItemManager::saveItem(item, source, [&save, index](const sela::ErrorRef& error) {
            if (error)
                sela::fatalError("a file cannot be saved");
            save(index + 1);
        });
    };
    save(1);
    loop.run();
    return 0;
}
