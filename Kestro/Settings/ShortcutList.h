#pragma once

#include "KestroCore/Shortcuts/ShortcutOwner.h"

#include <QAbstractListModel>
#include <QQmlEngine>
#include <functional>
#include <map>
#include <memory>

namespace kestro {

class AppModel;
class ShortcutRecorder;

/// Shortcuts with their controls. Main thread.
class ShortcutList final : public QAbstractListModel {
    Q_OBJECT
    QML_ANONYMOUS
public:
    using Owners = std::function<QList<ShortcutOwner>()>;
    enum Role { Title = Qt::UserRole, Recorder };

    /// `owners` is asked again whenever the layout changes.
    ShortcutList(AppModel& model, Owners owners);
    ~ShortcutList() override;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// Of the items of the layout, in its order.
    static Owners ofLayout(AppModel& model);

private:
    void follow();
    ShortcutRecorder* recorder(const ShortcutOwner& owner) const;

    AppModel& m_model;
    Owners m_ask;
    QList<ShortcutOwner> m_owners;
    mutable std::map<ShortcutOwner, std::unique_ptr<ShortcutRecorder>> m_recorders;
};

} // namespace kestro
