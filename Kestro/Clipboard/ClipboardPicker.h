#pragma once

#include "Kestro/Clipboard/ClipPreview.h"
#include "Kestro/Clipboard/ClipRows.h"
#include "KestroCore/Clipboard/PickerKeys.h"

#include <QQuickWindow>
#include <functional>
#include <memory>

namespace kestro {

class ClipboardModel;
class DesktopWindows;
class Panels;
class Pointer;
class Screens;

/// The panel over the history, driven by the keyboard. It opens on the display with the pointer, and gives the keyboard
/// back to the window that the user came from. Main thread.
class ClipboardPicker final : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY searched)
    Q_PROPERTY(QString filter READ filter WRITE setFilter NOTIFY searched)
    Q_PROPERTY(QStringList filters READ filters CONSTANT)
    Q_PROPERTY(kestro::ClipRows* rows READ rows CONSTANT)
    Q_PROPERTY(kestro::ClipPreview* preview READ preview CONSTANT)
    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY selectionChanged)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY searched)
    Q_PROPERTY(QString nothingSelected READ nothingSelected NOTIFY searched)
    Q_PROPERTY(QString hints READ hints NOTIFY searched)
    Q_PROPERTY(QString note READ note NOTIFY noteChanged) ///< what the user should know now
    Q_PROPERTY(QString undoText READ undoText NOTIFY noteChanged)
public:
    struct Ports {
        MainLoop& loop;
        Screens& screens;
        Pointer& pointer;
        Panels& panels;
        DesktopWindows& windows;
    };
    /// Fills a window that is not shown yet; what it returns lives as long as the window.
    using Fill = std::function<std::shared_ptr<void>(QQuickWindow&, const QVariantMap& properties)>;

    static constexpr QSizeF size{ 680, 440 }; ///< points
    static constexpr double shadowRoom = 24;

    /// All outlive it.
    ClipboardPicker(ClipboardModel& model, const Ports& ports, Fill fill);
    ~ClipboardPicker() override;

    void show();
    Q_INVOKABLE void close();
    bool isOpen() const { return m_panel != nullptr; }
    QQuickWindow* panel() const { return m_panel.get(); }

    /// A key in the panel; whether it was taken.
    bool handle(const QKeyEvent& event);

    QString query() const { return m_query; }
    void setQuery(const QString& query);
    QString filter() const { return rawValue(m_filter); }
    void setFilter(const QString& filter);
    QStringList filters() const;
    ClipRows* rows() { return &m_rows; }
    ClipPreview* preview() { return &m_preview; }
    int selectedRow() const;
    QString emptyText() const;
    QString nothingSelected() const;
    QString hints() const;
    QString note() const { return m_note; }
    QString undoText() const;

    Q_INVOKABLE void select(const QString& id);
    Q_INVOKABLE void pick(const QString& id);
    Q_INVOKABLE void copyOnly(const QString& id);
    Q_INVOKABLE void togglePin(const QString& id);
    Q_INVOKABLE void remove(const QString& id);
    Q_INVOKABLE void undo();

Q_SIGNALS:
    void searched();
    void selectionChanged();
    void noteChanged();

private:
    void perform(const PickerAction& action, bool plain = false);
    void pickEntry(const QUuid& id, bool paste, bool plain);
    void search(bool selectsFirst);
    void show(const QList<ClipEntry>& result, bool selectsFirst);
    void setSelection(const std::optional<QUuid>& id);
    void tell(const QString& note);
    void makePanel();
    void closeIfUnfocused();
    quint32 frontmost() const;

    ClipboardModel& m_model;
    Ports m_ports;
    Fill m_fill;
    QString m_query;
    ClipFilter m_filter = ClipFilter::all;
    std::optional<QUuid> m_selection;
    quint32 m_target = 0; ///< the window that the user came from
    ClipRows m_rows;
    ClipPreview m_preview;
    QString m_note;
    WorkItem m_noteWork, m_focusCheck;
    std::unique_ptr<QQuickWindow> m_panel;
    std::shared_ptr<void> m_content; // below the window that it fills: it goes first
};

} // namespace kestro
