// Preloaded into a GTK program, ends it when its first frame was sent to the display: what FirstFrame.cpp is
// to a Qt program.

#include <dlfcn.h>
#include <unistd.h>

namespace {

template<class Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" void gdk_window_end_draw_frame(void* window, void* context) {
    next<void(void*, void*)>("gdk_window_end_draw_frame")(window, context);
    next<void(void*)>("gdk_display_sync")(next<void*()>("gdk_display_get_default")());
    _exit(0);
}
