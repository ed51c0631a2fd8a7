#pragma once

#include <QString>
#include <optional>

/// Figures as the user reads them; one that is missing is "–".
namespace kestro::StatsText {

inline const QString none = QStringLiteral("–");

/// Of a share from 0 to 1.
QString percent(std::optional<double> share);
/// Bytes as memory is counted: 1 KB is 1024 bytes.
QString memory(std::optional<quint64> bytes);
/// Bytes as files are counted: 1 KB is 1000 bytes.
QString file(std::optional<double> bytes);
/// The same a second.
QString rate(std::optional<double> bytesPerSecond);
QString watts(std::optional<double> watts);

} // namespace kestro::StatsText
