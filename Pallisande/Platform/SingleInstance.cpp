#include "Pallisande/Platform/SingleInstance.h"

#include "Base/Sha256.h"

#include <QDeadlineTimer>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QTimer>
#include <QtEndian>

#include <fmt/format.h>

#include <sys/stat.h>

namespace Pallisande {

namespace {

// A message is its length (four bytes, most significant first) and texts that each end with a zero byte: the
// activation token, then the files. More than a command line can hold isn't taken.
constexpr quint32 largestMessage = 4 * 1024 * 1024;
constexpr int lengthSize = 4;
constexpr char taken = '+';
constexpr int mostAtOnce = 8;
constexpr std::chrono::milliseconds patienceWithAMessage { 5000 };

// The same folder has the same name by whatever path it is reached. Empty where there is no place that is the
// user's alone.
QString serverName(const std::filesystem::path& folder)
{
    struct stat status { };
    const QString place = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (place.isEmpty() || ::stat(folder.c_str(), &status) != 0)
        return {};
    const auto identity = Base::sha256(fmt::format("{}:{}", status.st_dev, status.st_ino));
    return QString("%1/pallisande-%2").arg(place, QString::fromStdString(identity.substr(0, 16)));
}

QByteArray encoded(const Handover& handover)
{
    QByteArray texts = QByteArray::fromStdString(handover.activationToken) + '\0';
    for (const auto& file : handover.files)
        texts += QByteArray::fromStdString(file.string()) + '\0';
    QByteArray length(lengthSize, '\0');
    qToBigEndian(static_cast<quint32>(texts.size()), length.data());
    return length + texts;
}

Handover decoded(const QByteArray& texts)
{
    Handover handover;
    auto parts = texts.split('\0');
    parts.removeLast(); // What stands behind the last zero byte: nothing.
    if (parts.isEmpty())
        return handover;
    handover.activationToken = parts.takeFirst().toStdString();
    for (const QByteArray& part : parts) {
        const std::filesystem::path file = part.toStdString();
        if (file.is_absolute())
            handover.files.push_back(file);
    }
    return handover;
}

} // namespace

SingleInstance::SingleInstance(QObject* parent)
    : QObject(parent)
{
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    m_server.setMaxPendingConnections(mostAtOnce);
    connect(&m_server, &QLocalServer::newConnection, this, &SingleInstance::welcome);
}

bool SingleInstance::handOver(
    const std::filesystem::path& folder, Handover handover, std::chrono::milliseconds patience)
{
    const QString name = serverName(folder);
    for (auto& file : handover.files)
        file = std::filesystem::absolute(file).lexically_normal();
    const QByteArray message = encoded(handover);
    if (name.isEmpty() || message.size() > static_cast<qsizetype>(largestMessage) + lengthSize)
        return false;

    const QDeadlineTimer deadline(patience);
    QLocalSocket socket;
    socket.connectToServer(name);
    const auto left = [&] { return static_cast<int>(deadline.remainingTime()); };
    if (!socket.waitForConnected(left()))
        return false;
    socket.write(message);
    while (socket.bytesAvailable() == 0) {
        if (!socket.waitForReadyRead(left()))
            return false;
    }
    return socket.read(1) == QByteArray(1, taken);
}

bool SingleInstance::listen(const std::filesystem::path& folder)
{
    m_server.close();
    const QString name = serverName(folder);
    if (name.isEmpty())
        return false;
    QLocalServer::removeServer(name); // Left by a killed program: nobody else holds the lock.
    return m_server.listen(name);
}

void SingleInstance::welcome()
{
    while (QLocalSocket* const socket = m_server.nextPendingConnection()) {
        socket->setReadBufferSize(static_cast<qint64>(largestMessage) + lengthSize);
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        QTimer::singleShot(patienceWithAMessage, socket, [socket] { socket->abort(); });
        const auto read = [this, socket] {
            char length[lengthSize];
            if (socket->peek(length, lengthSize) < lengthSize)
                return;
            const auto size = qFromBigEndian<quint32>(length);
            if (size > largestMessage)
                return socket->abort();
            if (socket->bytesAvailable() < static_cast<qint64>(size) + lengthSize)
                return;
            socket->skip(lengthSize);
            const auto handover = decoded(socket->read(size));
            socket->write(&taken, 1);
            socket->disconnectFromServer();
            emit raised(handover);
        };
        connect(socket, &QLocalSocket::readyRead, this, read);
        read(); // Some may have come already.
    }
}

} // namespace Pallisande
