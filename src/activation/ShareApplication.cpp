#include "activation/ShareApplication.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace {

/// Milliseconds that the application waits for another request when nothing is left to do: enough for a
/// notification to be sent.
constexpr unsigned idleTime = 3000;

/// What a desktop passes with a request so that the new window gets the focus: the member's name, and the
/// environment variable that programs read.
constexpr struct {
    const char* member;
    const char* variable;
} startupTokens[] = {{"desktop-startup-id", "DESKTOP_STARTUP_ID"},
                     {"activation-token", "XDG_ACTIVATION_TOKEN"}};

struct ShareApplication {
    GApplication parent;
    const char* program;
    GVariant* platformData; ///< of the request that is being handled
};

struct ShareApplicationClass {
    GApplicationClass parent;
};

G_DEFINE_TYPE(ShareApplication, share_application, G_TYPE_APPLICATION)

ShareApplication* shareApplication(GApplication* application) {
    return reinterpret_cast<ShareApplication*>(application);
}

/// Shows the lines of a `sela-share`, without the name that they begin with.
void notify(GApplication* application, std::string_view lines) {
    constexpr std::string_view name = "sela-share: ";
    std::string text;
    while (!lines.empty()) {
        const std::string_view line = lines.substr(0, lines.find('\n'));
        lines.remove_prefix(std::min(lines.size(), line.size() + 1));
        text += text.empty() ? "" : "\n";
        text += line.starts_with(name) ? line.substr(name.size()) : line;
    }
    GNotification* const notification = g_notification_new("Add to Sela");
    g_notification_set_body(notification, text.c_str());
    g_application_send_notification(application, nullptr, notification);
    g_object_unref(notification);
}

void handleEnd(GObject* process, GAsyncResult* result, void* data) {
    GApplication* const application = G_APPLICATION(data);
    char* errors = nullptr;
    g_subprocess_communicate_utf8_finish(G_SUBPROCESS(process), result, nullptr, &errors, nullptr);
    if (errors && *errors)
        notify(application, errors);
    g_free(errors);
    g_application_release(application);
    g_object_unref(application);
}

/// Starts `sela-share` with the arguments and keeps the application alive until its end.
void startShare(GApplication* application, std::vector<std::string> arguments) {
    const ShareApplication* const self = shareApplication(application);
    arguments.insert(arguments.begin(), {self->program, "--quiet"});
    std::vector<const char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments)
        pointers.push_back(argument.c_str());
    pointers.push_back(nullptr);
    GSubprocessLauncher* const launcher = g_subprocess_launcher_new(G_SUBPROCESS_FLAGS_STDERR_PIPE);
    for (const auto& [member, variable] : startupTokens) {
        const char* token = nullptr;
        if (self->platformData && g_variant_lookup(self->platformData, member, "&s", &token))
            g_subprocess_launcher_setenv(launcher, variable, token, true);
    }
    GError* error = nullptr;
    GSubprocess* const process = g_subprocess_launcher_spawnv(launcher, pointers.data(), &error);
    g_object_unref(launcher);
    if (!process) {
        notify(application, error->message);
        g_error_free(error);
        return;
    }
    g_application_hold(application);
    g_subprocess_communicate_utf8_async(process, nullptr, nullptr, handleEnd, g_object_ref(application));
    g_object_unref(process);
}

void activate(GApplication* application) {
    startShare(application, {});
}

void open(GApplication* application, GFile** files, int count, const char*) {
    std::vector<std::string> arguments{"--"};
    for (GFile* const file : std::vector<GFile*>(files, files + count)) {
        if (const char* const path = g_file_peek_path(file)) {
            arguments.emplace_back(path);
        } else {
            char* const url = g_file_get_uri(file);
            arguments.emplace_back(url);
            g_free(url);
        }
    }
    startShare(application, std::move(arguments));
}

void paste(GSimpleAction*, GVariant*, void* application) {
    startShare(G_APPLICATION(application), {"--paste"});
}

void beforeRequest(GApplication* application, GVariant* platformData) {
    shareApplication(application)->platformData = platformData;
}

void afterRequest(GApplication* application, GVariant*) {
    shareApplication(application)->platformData = nullptr;
}

void share_application_init(ShareApplication* self) {
    GSimpleAction* const action = g_simple_action_new("paste", nullptr);
    g_signal_connect(action, "activate", G_CALLBACK(paste), self);
    g_action_map_add_action(G_ACTION_MAP(self), G_ACTION(action));
    g_object_unref(action);
}

void share_application_class_init(ShareApplicationClass* ours) {
    GApplicationClass& methods = ours->parent;
    methods.activate = activate;
    methods.open = open;
    methods.before_emit = beforeRequest;
    methods.after_emit = afterRequest;
}

} // namespace

GApplication* sela::makeShareApplication(const char* program) {
    auto* const application = static_cast<GApplication*>(g_object_new(
        share_application_get_type(), "application-id", "xyz.sela.share", "flags",
        G_APPLICATION_HANDLES_OPEN | G_APPLICATION_IS_SERVICE, "inactivity-timeout", idleTime, nullptr));
    shareApplication(application)->program = program;
    return application;
}
