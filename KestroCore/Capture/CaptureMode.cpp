#include "KestroCore/Capture/CaptureMode.h"

namespace kestro {

QString label(CaptureMode mode)
{
    switch (mode) {
    case CaptureMode::area:
        return QStringLiteral("Area");
    case CaptureMode::window:
        return QStringLiteral("Window");
    case CaptureMode::fullScreen:
        return QStringLiteral("Full Screen");
    case CaptureMode::text:
        break;
    }
    return QStringLiteral("Text");
}

} // namespace kestro
