#include "host/HostScope.h"

#include "platform/foundation/Bundle.h"
#include "platform/foundation/LogOutput.h"
#include "platform/uikit/UIAccessibility.h"
#include "platform/uikit/UIApplication.h"
#include "platform/uikit/UIScreen.h"

#include <QGuiApplication>
#include <QLocale>

#include <unistd.h>

namespace sela {

namespace {

UIUserInterfaceLayoutDirection layoutDirection() {
    const QLocale locale(QString::fromStdString(Bundle::main().preferredLocalization()));
    return locale.textDirection() == Qt::RightToLeft ? UIUserInterfaceLayoutDirection::rightToLeft
                                                     : UIUserInterfaceLayoutDirection::leftToRight;
}

/// The log's lines are printed on a terminal only when asked for.
bool printsLog(const CommandLine& line) {
    return line.output == CommandLine::Output::verbose ||
           (line.output == CommandLine::Output::normal && !::isatty(STDERR_FILENO));
}

} // namespace

HostScope::HostScope(const CommandLine& line, DispatchQueue& loop)
    : queue_(loop), scopedQueue_(queue_), loading_(line.headless), painter_(measurer_), appearance_(line),
      placement_(CardPlacement::on(line)), window_(placement_.screen) {
    TextMeasurer::setCurrent(&measurer_);
    UIScreen::main().setScale(line.headless || line.hasScale ? line.scale : qGuiApp->devicePixelRatio());
    UIApplication::shared().setUserInterfaceLayoutDirection(layoutDirection());
    setLogPrinted(printsLog(line));
    followDesktop();
    appearance_.setChangeHandler([this] { followDesktop(); });
}

HostScope::~HostScope() {
    UIAccessibility::setReduceMotionEnabled(false);
    setLogPrinted(true);
    UIApplication::shared().setUserInterfaceLayoutDirection(UIUserInterfaceLayoutDirection::leftToRight);
    UIScreen::main().setScale(1);
    TextMeasurer::setCurrent(nullptr);
}

void HostScope::followDesktop() {
    window_.setTraitCollection(appearance_.traitCollection());
    UIAccessibility::setReduceMotionEnabled(appearance_.reducesMotion());
}

} // namespace sela
