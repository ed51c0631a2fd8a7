#pragma once

#include "Kestro/Notes/NotesModel.h"
#include "Kestro/Widgets/Widget.h"

namespace kestro {

struct FeatureHost;

/// The card and the window of the note. Main thread.
class NotesWidget final : public Widget {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to a feature")
    Q_PROPERTY(kestro::NotesModel* notes READ notes CONSTANT FINAL)
public:
    /// Both must outlive it.
    NotesWidget(FeatureHost& host, NotesModel& notes);

    NotesModel* notes() const { return &m_notes; }
    Q_INVOKABLE void openWindow();

    QString cardView() const override { return QStringLiteral("Notes/NotesCard"); }
    double bodyHeight(const Look& look) const override;
    std::optional<WidgetWindow> window() const override;
    std::shared_ptr<void> windowOpened() override;
    void shown(bool isShown) override;

Q_SIGNALS:
    /// The widget left the layout: an open window closes.
    void removed();

private:
    FeatureHost& m_host;
    NotesModel& m_notes;
};

} // namespace kestro
