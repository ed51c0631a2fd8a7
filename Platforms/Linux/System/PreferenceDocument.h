#pragma once

#include <QByteArray>
#include <QMap>
#include <QVariant>
#include <optional>
#include <vector>

namespace kestro {

/// The preference file's text, one member a key. An unchanged member keeps its spelling and place, so that
/// nothing another program wrote is lost or rounded.
class PreferenceDocument {
public:
    using Values = QMap<QString, QVariant>;

    PreferenceDocument() = default;
    /// Nothing where `text` is not one JSON object.
    static std::optional<PreferenceDocument> parse(const QByteArray& text);

    /// Without the nulls, which count as absent.
    const Values& values() const { return m_values; }
    /// Sets, or with an invalid `value` removes, one key. Returns whether anything is different now.
    /// `value` must be storable.
    bool set(const QString& key, const QVariant& value);
    QByteArray text() const;

private:
    struct Member {
        QString key;
        QByteArray keyText;
        QByteArray valueText;
    };

    bool split(QByteArrayView text);

    std::vector<Member> m_members;
    Values m_values;
};

} // namespace kestro
