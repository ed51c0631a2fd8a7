#pragma once

#include "Kestro/Platform/MainLoop.h"
#include "KestroCore/Layout/WidgetKind.h"

#include <map>
#include <memory>
#include <vector>

class QQmlEngine;
class QWindow;

namespace kestro {

class AppModel;
class FullWindow;

/// The ordinary windows that are open: those that show a widget large. Main thread.
class FullWindows final {
public:
    /// Both must outlive it.
    FullWindows(AppModel& model, QQmlEngine& engine);
    ~FullWindows();

    /// Opens the window of a widget that has one, or brings it to the front.
    void open(WidgetKind kind);
    /// A deferred delete: the handler of the window's own event is still running. If the loop ends first, the
    /// destructor deletes it.
    void leave(std::unique_ptr<QWindow> window);

private:
    void closed(WidgetKind kind);

    AppModel& m_model;
    QQmlEngine& m_engine;
    std::map<WidgetKind, std::unique_ptr<FullWindow>> m_open;
    std::vector<std::unique_ptr<QWindow>> m_leaving;
    WorkItem m_leaveWork;
};

} // namespace kestro
