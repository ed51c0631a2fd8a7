#pragma once

#include <QtGlobal>

namespace kestro {

/// Keys as if the user had typed them. Main thread.
class KeyPoster {
public:
    virtual ~KeyPoster() = default;

    /// Whether keys can be posted, and windows told apart that they could reach.
    virtual bool isTrusted() const = 0;
    /// Types what pastes in the window `target`, which has the focus: most programs and terminals differ. Modifiers
    /// that the user still holds are let go before.
    virtual void postPaste(quint32 target) = 0;
};

} // namespace kestro
