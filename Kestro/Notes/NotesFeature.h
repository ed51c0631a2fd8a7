#pragma once

#include "Kestro/Notes/NotesModel.h"
#include "Kestro/Notes/NotesWidget.h"
#include "Kestro/Widgets/Feature.h"

namespace kestro {

class LauncherModel;

/// One note, in a file of its own. Main thread.
class NotesFeature final : public Feature {
    Q_OBJECT
public:
    /// All must outlive it.
    NotesFeature(FeatureHost& host, LauncherModel& launcher, MainLoop& loop, Log& log, NotesStorage storage);

    void start() override;
    void finish() override { m_model.flush(); }
    std::vector<Widget*> widgets() override { return { &m_widget }; }

private:
    void followLayout();

    LauncherModel& m_launcher;
    NotesModel m_model;
    NotesWidget m_widget;
    bool m_inLayout = false;
};

} // namespace kestro
