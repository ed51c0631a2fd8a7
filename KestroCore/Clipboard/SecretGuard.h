#pragma once

#include <QString>
#include <QStringView>

/// Text that other eyes should not read by accident. Pure functions, from any thread.
namespace kestro::SecretGuard {

enum class Secret {
    none,
    key, ///< a private key, or a setting whose name says that its value is secret
    token, ///< what a machine made up: an access token, a generated password
    card ///< the number of a payment card
};

/// What `text` looks like, by its beginning of 16,384 code units. Prose, addresses, paths, identifiers of code, UUIDs
/// and the hashes of commits are none of them.
Secret secret(QStringView text);
inline bool looksSecret(QStringView text) { return secret(text) != Secret::none; }

/// What is shown in its place: dots whose number tells nothing, and the end of a card's number.
QString masked(QStringView text);

} // namespace kestro::SecretGuard
