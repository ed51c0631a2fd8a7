#pragma once

#include <QString>
#include <gio/gio.h>
#include <memory>

/// Owners for what GLib hands out.
namespace kestro {

struct GioRelease {
    void operator()(void* object) const { g_object_unref(object); }
    void operator()(char* text) const { g_free(text); }
    void operator()(GKeyFile* file) const { g_key_file_unref(file); }
};

/// A reference that is ours to give back: a GObject, or one of the types above.
template <typename T> using GioPointer = std::unique_ptr<T, GioRelease>;

/// Text that GLib made for us.
using GioText = std::unique_ptr<char[], GioRelease>;

/// Takes an error out of a call: pass `error.out()` where GLib wants a GError**.
class GioError {
public:
    GioError() = default;
    ~GioError() { g_clear_error(&m_error); }
    GioError(const GioError&) = delete;
    GioError& operator=(const GioError&) = delete;

    GError** out() { return &m_error; }
    QString message() const { return m_error ? QString::fromUtf8(m_error->message) : QString(); }

private:
    GError* m_error = nullptr;
};

} // namespace kestro
