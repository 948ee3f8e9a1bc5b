#include "host/QtApplication.h"

#include "host/ExitStatus.h"
#include "platform/foundation/Bundle.h"
#include "platform/foundation/NSLog.h"

#include <QThreadPool>

#include <cstdio>
#include <cstdlib>

namespace sela {

namespace {

/// Whether the QGuiApplication is being constructed; if that fails, Qt logs a fatal message and does not
/// return.
bool isQtStarting = false;

/// Qt prints nothing on standard error, which is for our log lines, except why it cannot go on.
void handleQtMessage(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type != QtFatalMsg)
        return;
    if (!isQtStarting) {
        std::fprintf(stderr, "sela-share: %s\n", escapedForLog(message.toStdString()).c_str());
        return;
    }
    std::fputs(
        "sela-share: the display cannot be opened; look at DISPLAY and WAYLAND_DISPLAY, or use --headless "
        "with steps such as --tap addButton\n",
        stderr);
    std::_Exit(static_cast<int>(ExitStatus::badArguments));
}

void setEnvironment(const CommandLine& line) {
    if (line.headless)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // Among fonts that share characters, as those of Chinese and Japanese do, the language of the texts
    // decides.
    QByteArray language = QByteArray::fromStdString(Bundle::main().preferredLocalization());
    if (!language.isEmpty() && !qEnvironmentVariableIsSet("FC_LANG"))
        qputenv("FC_LANG", language.replace('_', '-'));
    // Only single digits are typed. An input method would be loaded, be asked about each key, and could keep
    // it.
    qputenv("QT_IM_MODULE", "none");
    qunsetenv("QT_IM_MODULES");
}

/// The arguments of the QGuiApplication, which keeps the references: the program's name alone, since Qt must
/// not interpret the user's arguments.
int argumentCount = 1;
char programName[] = "sela-share";
char* arguments[] = {programName, nullptr};

} // namespace

QtApplication::QtApplication(const CommandLine& line) {
    setEnvironment(line);
    fonts_.emplace();
    qInstallMessageHandler(handleQtMessage);
    // A desktop's theme for Qt changes no pixel of ours, but that of GTK desktops loads GTK, which takes as
    // long as the rest of the start. One that the environment names (QT_QPA_PLATFORMTHEME) is used.
    QGuiApplication::setDesktopSettingsAware(false);
    // Fonts have the size that the views set, whatever resolution the display reports.
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
    isQtStarting = true;
    application_.emplace(argumentCount, arguments);
    isQtStarting = false;
    // By this the desktop matches the window to its desktop file.
    QGuiApplication::setDesktopFileName(QStringLiteral("xyz.sela.share"));
    QGuiApplication::setQuitOnLastWindowClosed(false);
    // Qt divides every fill among these threads; waking them took a third of a frame's time.
    QThreadPool::globalInstance()->setMaxThreadCount(1);
    fonts_->beginList();
}

} // namespace sela
