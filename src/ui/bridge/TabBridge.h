#pragma once

#include "platform/Subscription.h"

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

namespace velloway {

/// What the bridges of all tabs have in common: a value of the model is read again only while its tab is on
/// screen, and once however many changes came together. Main thread only.
class TabBridge : public QObject {
    Q_OBJECT
    QML_ANONYMOUS

public:
    ~TabBridge() override;

    /// The tab's file among the views.
    QString file() const { return file_; }

    /// A key while the tab is shown; true when it was one of the tab's shortcuts and did what that does.
    Q_INVOKABLE virtual bool pressShortcut(int /*key*/, int /*modifiers*/, bool /*isRepeat*/) { return false; }

    /// Coming on screen reads everything anew: the local address and the names of days change unannounced.
    void setOnScreen(bool onScreen);

protected:
    explicit TabBridge(QString file);

    /// Runs `read` whenever the tab comes on screen, and while it is there after changes of `source`, when
    /// control is back with the event loop.
    template <class Source> void follow(Source& source, std::function<void()> read) {
        const std::size_t index = readings_.size();
        readings_.push_back({std::move(read), true});
        subscriptions_.push_back(source.observe([this, index](const auto&...) { changed(index); }));
    }

    /// Passes each change of a field on at once: what shows it may also write to it.
    template <class Bridge, class Field> void follow(Field& field, void (Bridge::*notify)()) {
        subscriptions_.push_back(
            field.observe([this, notify](const auto&) { emit(static_cast<Bridge*>(this)->*notify)(); }));
    }

    /// Takes a value over, and reports it if it differs.
    template <class Bridge, class Value> void show(Value& shown, Value now, void (Bridge::*notify)()) {
        if (shown != now) {
            shown = std::move(now);
            emit(static_cast<Bridge*>(this)->*notify)();
        }
    }

private:
    struct Reading {
        std::function<void()> read;
        bool isStale;
    };

    void changed(std::size_t index);
    void refresh();

    const QString file_;
    std::vector<Reading> readings_;
    std::vector<Subscription> subscriptions_;
    bool onScreen_ = false;
    bool isScheduled_ = false;
};

} // namespace velloway
