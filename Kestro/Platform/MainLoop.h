#pragma once

#include "KestroCore/Support/Date.h"

#include <functional>
#include <memory>

namespace kestro {

/// A handle on work that the loop holds. Replacing, cancelling or destroying it takes the work back;
/// doing so from inside the work itself is allowed.
class Scheduled {
public:
    /// The loop's side of a handle; its destructor cancels the work.
    class Token {
    public:
        virtual ~Token() = default;
        virtual bool pending() const = 0;
    };

    Scheduled() = default;
    explicit Scheduled(std::unique_ptr<Token> token)
        : m_token(std::move(token))
    {
    }

    /// Whether the work is still to run; always true for a timer until it is cancelled.
    explicit operator bool() const { return m_token && m_token->pending(); }
    void cancel() { m_token.reset(); }

private:
    std::unique_ptr<Token> m_token;
};

using WorkItem = Scheduled; ///< runs once
using Timer = Scheduled; ///< runs again and again

/// The main thread's loop. Everything but `post` is for the main thread alone.
class MainLoop {
public:
    using Work = std::function<void()>;

    virtual ~MainLoop() = default;

    virtual Date now() const = 0;
    /// Runs `work` once, `seconds` from now (0: on a later turn).
    [[nodiscard]] virtual WorkItem after(double seconds, Work work) = 0;
    /// Runs `work` every `seconds`, first after one interval.
    [[nodiscard]] virtual Timer every(double seconds, Work work) = 0;
    /// Runs `work` on the main thread on a later turn; from any thread. Work posted after the loop has ended is
    /// dropped.
    virtual void post(Work work) = 0;
};

} // namespace kestro
