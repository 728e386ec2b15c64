#pragma once

#include <QObject>

namespace Pallisande {

// Turns the signals by which a system ends a program (SIGTERM, SIGINT, SIGHUP) into an orderly close. One
// object a program. Signals that were ignored at start stay ignored (nohup).
class SystemSignals final : public QObject {
    Q_OBJECT
public:
    explicit SystemSignals(QObject* parent = nullptr);
    ~SystemSignals() override;

signals:
    // May come more than once: whoever ends programs often says so twice.
    void closeRequested();
};

} // namespace Pallisande
