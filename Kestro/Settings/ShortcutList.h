#pragma once

#include "KestroCore/Shortcuts/ShortcutOwner.h"

#include <QAbstractListModel>
#include <QQmlEngine>
#include <map>
#include <memory>
#include <vector>

namespace kestro {

class AppModel;
class ShortcutRecorder;
class ShortcutSource;

/// One section of shortcuts with their controls. Main thread.
class ShortcutList final : public QAbstractListModel {
    Q_OBJECT
    QML_ANONYMOUS
public:
    enum Role { Title = Qt::UserRole, Recorder };

    /// One for each section of the sources, in the sources' order. `model` must outlive them.
    static std::vector<std::unique_ptr<ShortcutList>> ofSections(AppModel& model);

    ShortcutList(AppModel& model, const QString& section);
    ~ShortcutList() override;

    const QString& section() const { return m_section; }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    struct Row {
        const ShortcutSource* source;
        ShortcutOwner owner;
        bool operator==(const Row&) const = default;
    };
    QList<Row> ask() const;
    void follow();
    ShortcutRecorder* recorder(const ShortcutOwner& owner) const;

    AppModel& m_model;
    QString m_section;
    QList<Row> m_rows;
    mutable std::map<ShortcutOwner, std::unique_ptr<ShortcutRecorder>> m_recorders;
};

} // namespace kestro
