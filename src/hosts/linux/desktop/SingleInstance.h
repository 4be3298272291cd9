#pragma once

#include "hosts/linux/desktop/ActivationToken.h"
#include "hosts/linux/desktop/HandoverSocket.h"

#include <QLockFile>
#include <QObject>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace velloway {

/// Keeps the program to one process per session. A second one hands over what it was started with and ends.
///
/// On the session bus the program has a name and the object that the desktop expects under it; without a bus a
/// lock file and a socket in the session's run-time folder do the same.
class SingleInstance : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    enum class Outcome {
        first,
        /// Another instance runs and has taken the request.
        handedOver,
        /// Another instance runs but does not answer.
        notAnswered
    };

    /// What a start, or another program over the bus, asks for: to come forward, to open files and addresses,
    /// or to do what an action of the desktop entry is for.
    struct Request {
        std::vector<std::string> uris;
        std::string action;
        ActivationToken token;
        /// Nobody is waiting for a window.
        bool isUnattended = false;
        bool isReopen() const { return uris.empty() && action.empty(); }
    };

    SingleInstance();
    ~SingleInstance() override;

    /// An unattended request without addresses asks nothing of an instance that runs already.
    Outcome claim(const Request& request);

    /// Main thread. Requests that came before are delivered from the event loop.
    void setHandler(std::function<void(const Request&)> handler);

    /// The files that a command line names, as addresses, and its `tel:` and `sms:` addresses. Words that begin
    /// with a dash are neither.
    static Request requestFrom(const std::vector<std::string>& arguments,
                               const std::filesystem::path& workingDirectory);

public slots:
    Q_SCRIPTABLE void Activate(const QVariantMap& platformData);
    Q_SCRIPTABLE void Open(const QStringList& uris, const QVariantMap& platformData);
    Q_SCRIPTABLE void ActivateAction(const QString& action, const QVariantList& parameter,
                                     const QVariantMap& platformData);

private:
    Outcome claimOnBus(const Request& request);
    Outcome claimBySocket(const Request& request);
    /// For later starts, should the bus die.
    void listenToo();
    bool listen(const QString& socketPath);
    void read(const QByteArray& lines);
    void take(Request request);
    void deliver();

    std::function<void(const Request&)> handler_;
    std::vector<Request> waiting_;
    std::unique_ptr<QLockFile> lock_;
    std::unique_ptr<HandoverSocket> socket_;
};

} // namespace velloway
