#pragma once

#include "bridge/Variants.h"
#include "state/Observable.h"

#include <QQmlPropertyMap>
#include <QString>

#include <functional>
#include <unordered_map>
#include <utility>
#include <vector>

namespace velloway {

/// Observable values of the core as properties that QML can bind to. Main thread only.
class PropertyBag : public QQmlPropertyMap {
public:
    explicit PropertyBag(QObject* parent = nullptr) : QQmlPropertyMap(parent) {}

    /// The property follows the value; what QML writes is refused.
    template <class T> void show(const char* name, Observable<T>& value) {
        const QString key = QString::fromLatin1(name);
        subscriptions_.push_back(
            value.observeWithCurrent([this, key](const T& now) { insert(key, toVariant(now)); }));
    }

    /// Both ways: what QML writes is assigned to the value.
    template <class T> void bind(const char* name, Observable<T>& value) {
        show(name, value);
        writers_[QString::fromLatin1(name)] = [&value](const QVariant& written) {
            T next{};
            fromVariant(written, next);
            value.set(std::move(next));
        };
    }

    void put(const char* name, const QVariant& value) { insert(QString::fromLatin1(name), value); }

protected:
    QVariant updateValue(const QString& key, const QVariant& input) override {
        const auto writer = writers_.find(key);
        if (writer != writers_.end()) {
            writer->second(input);
        }
        return value(key);
    }

private:
    std::unordered_map<QString, std::function<void(const QVariant&)>> writers_;
    std::vector<Subscription> subscriptions_;
};

} // namespace velloway
