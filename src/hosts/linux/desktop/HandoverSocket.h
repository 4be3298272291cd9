#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QString>

#include <functional>
#include <memory>

namespace velloway {

/// The socket over which a start of the program hands what it asks for to the instance that runs already: lines
/// of text with an empty one as the end, and one byte as the answer. Main thread.
///
/// It is made of system calls because the toolkit's own socket brings a library for all kinds of networks with
/// it.
class HandoverSocket : public QObject {
public:
    using Received = std::function<void(const QByteArray& lines)>;

    explicit HandoverSocket(Received received);
    ~HandoverSocket() override;

    /// Takes the path over from whatever has it. False when there can be no socket.
    bool listen(const QString& path);

    enum class Outcome { nobodyListens, notAnswered, answered };
    /// Waits no longer than `bound` milliseconds for each step.
    static Outcome handOver(const QString& path, const QByteArray& lines, int bound);

private:
    void accept();

    Received received_;
    QByteArray path_;
    std::unique_ptr<QSocketNotifier> listener_;
};

} // namespace velloway
