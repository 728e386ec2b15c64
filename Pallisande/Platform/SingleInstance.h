#pragma once

#include <QByteArray>
#include <QLocalServer>
#include <QObject>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace Pallisande {

// What a second start of the program hands to the first.
struct Handover {
    std::vector<std::filesystem::path> files;
    std::string activationToken; // Lets the first raise its window where the desktop asks for that (Wayland).

    bool operator==(const Handover&) const = default;
};

// One window for each library folder: the one that holds the folder's lock listens, a later one finds it and
// hands over. The lock alone decides who may write; a start that gets no answer and no lock tries once more,
// since the other may be just starting.
class SingleInstance final : public QObject {
    Q_OBJECT
public:
    explicit SingleInstance(QObject* parent = nullptr);

    // Whether a window that has the folder took it. Relative paths are completed here.
    static bool handOver(const std::filesystem::path& folder, Handover handover,
        std::chrono::milliseconds patience = std::chrono::milliseconds(2000));

    // Listens for the folder, whose lock the caller holds, instead of the one before (the library was moved).
    // False when that can't be done; a second start then finds the folder in use.
    bool listen(const std::filesystem::path& folder);

signals:
    void raised(const Pallisande::Handover& handover);

private:
    void welcome();

    QLocalServer m_server;
};

} // namespace Pallisande
