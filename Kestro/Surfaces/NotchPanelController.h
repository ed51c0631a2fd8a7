#pragma once

#include <QObject>

namespace kestro {

class AppModel;

/// Lives for the whole run, whichever surface is shown, and watches the screens' sleep for both. Main thread.
class NotchPanelController final : public QObject {
    Q_OBJECT
public:
    explicit NotchPanelController(AppModel& model);
};

} // namespace kestro
