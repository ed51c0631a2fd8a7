#pragma once

#include "Kestro/Platform/Log.h"

namespace kestro {

/// Standard error, which the session's journal takes. Each line goes out in one write, so lines never mix.
/// A reader that has gone or does not read costs the lines, not the program.
class StderrLog final : public Log {
public:
    StderrLog();
    void write(const QString& line) override;
};

} // namespace kestro
