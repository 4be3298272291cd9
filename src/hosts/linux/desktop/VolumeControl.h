#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace velloway {

/// The volume of the default output and its being on, changed by the sound server's own command line tool. Main
/// thread.
///
/// Changes are made one after the other, each from the value that the one before left.
class VolumeControl : public QObject {
public:
    using ErrorHandler = std::function<void(const std::string& error)>;

    explicit VolumeControl(ErrorHandler onError) : onError_(std::move(onError)) {}

    /// Changes the volume by so many points of a hundred, not below 0 and not up beyond 100. A volume that is
    /// above 100 already stays there when it is to rise. Returns at once; an error
    /// text if there is no tool to do it with.
    std::optional<std::string> change(int points);
    /// Turns the sound off, or on again. Returns as `change` does.
    std::optional<std::string> toggleMute();

private:
    /// One of the command line tools that can be there.
    struct Tool {
        QString name;
        QStringList readArguments;
        /// The new value is put after these.
        QStringList writeArguments;
        QStringList muteArguments;
        /// The volume in points of a hundred, from what reading answered.
        std::optional<int> (*parse)(const std::string& answer);
    };

    static const std::vector<Tool>& tools();

    /// Points of a hundred; nothing to toggle the sound.
    using Change = std::optional<int>;

    std::optional<std::string> enqueue(Change change);
    void startNext();
    void tryTool(std::size_t toolIndex, std::string complaint);
    bool handle(const Tool& tool, const QString& program, const std::string& answer);
    void write(const Tool& tool, const QString& program, int present);
    void finish(const std::string& complaint);

    ErrorHandler onError_;
    std::deque<Change> changes_;
    bool isBusy_ = false;
};

} // namespace velloway
