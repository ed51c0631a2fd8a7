#pragma once

#include <QString>
#include <exception>

namespace kestro {

/// The reason why a file could not be read or written, as a sentence for the user. The one exception that may leave
/// KestroCore; a model catches it and shows the description.
class StorageError : public std::exception {
public:
    explicit StorageError(QString description)
        : m_description(std::move(description))
        , m_what(m_description.toStdString())
    {
    }

    const QString& description() const { return m_description; }
    const char* what() const noexcept override { return m_what.c_str(); }

private:
    QString m_description;
    std::string m_what;
};

} // namespace kestro
