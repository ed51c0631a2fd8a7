#pragma once

#include "Kestro/Platform/Log.h"

#include <QStringList>

namespace kestro::test {

class RecordingLog final : public Log {
public:
    void write(const QString& line) override { lines.append(line); }
    QStringList lines;
};

} // namespace kestro::test
