#pragma once

#include <QString>

namespace kestro {

/// The system log, for failures that the user cannot act on. From any thread.
class Log {
public:
    virtual ~Log() = default;
    /// One line; it begins "Kestro: ".
    virtual void write(const QString& line) = 0;
};

} // namespace kestro
