#include "Kestro/Settings/GeneralSettings.h"

#include "Kestro/Platform/LoginItem.h"

#include <QCoreApplication>

namespace kestro {

GeneralSettings::GeneralSettings(LoginItem& loginItem)
    : m_loginItem(loginItem)
{
    connect(&loginItem, &LoginItem::changed, this, &GeneralSettings::changed);
}

bool GeneralSettings::opensAtLogin() const { return m_loginItem.isEnabled(); }

void GeneralSettings::setOpensAtLogin(bool opens)
{
    m_loginFailure = m_loginItem.setEnabled(opens).value_or(QString());
    Q_EMIT changed();
}

QString GeneralSettings::version() const { return QCoreApplication::applicationVersion(); }

} // namespace kestro
