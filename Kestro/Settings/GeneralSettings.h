#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace kestro {

class LoginItem;

/// The General pane's state: whether the program starts with the session, and which version this is. Main thread.
class GeneralSettings final : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(bool opensAtLogin READ opensAtLogin WRITE setOpensAtLogin NOTIFY changed)
    /// Why the last wish to change it came to nothing; empty where it did not.
    Q_PROPERTY(QString loginFailure READ loginFailure NOTIFY changed)
    Q_PROPERTY(QString version READ version CONSTANT)
public:
    /// `loginItem` must outlive it.
    explicit GeneralSettings(LoginItem& loginItem);

    bool opensAtLogin() const;
    void setOpensAtLogin(bool opens);
    QString loginFailure() const { return m_loginFailure; }
    QString version() const;

Q_SIGNALS:
    void changed();

private:
    LoginItem& m_loginItem;
    QString m_loginFailure;
};

} // namespace kestro
